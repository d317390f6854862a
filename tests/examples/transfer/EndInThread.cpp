// SPDX-License-Identifier: Apache-2.0
#include "EndInThread.hpp"

#include <boost/asio/local/connect_pair.hpp>
#include <exception>
#include <utility>

namespace transfer::tests {

EndInThread::EndInThread(Connection::Socket& socket, const std::string& peer,
                         std::function<void(Connection&)> run) {
  Connection::Socket own(io_);
  boost::asio::local::connect_pair(socket, own);
  Connection connection(io_, std::move(own), peer, std::chrono::seconds(2), time_);
  failure_ = std::async(std::launch::async,
                        [connection = std::move(connection), run = std::move(run)]() mutable -> std::string {
                          try {
                            run(connection);
                            return "";
                          } catch (const std::exception& error) {
                            return error.what();
                          }
                        });
}

std::string EndInThread::failureInSilence() {
  time_.passWhileNothingHappens(io_);
  return failure_.get();
}

}  // namespace transfer::tests
