// SPDX-License-Identifier: Apache-2.0
// What can only be seen of a whole process: its first numbers, its threads, its children.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <memory>
#include <thread>
#include <vector>

#include "foundation/corvane/common.hpp"

namespace foundation::corvane::common {
namespace {

std::ptrdiff_t threadCount() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/task"),
                       std::filesystem::directory_iterator());
}

void useEverything() {
  using namespace serialization;
  const auto protocols = ProtocolRegistry::create("demo", "1");
  protocols->registerProtocolInitializer("p",
                                         [](const auto&, const auto& version, const auto& configuration) {
                                           return std::pair(version, configuration);
                                         },
                                         {{"a", "1"}});
  const auto server = Registry::create("server");
  const auto client = Registry::create("client");
  const auto request = session::toJSON(std::vector<session::MessageProtocolConfig>{
      {"p", {1, 0}, {{"a", "1", session::FeatureHandling::required}}}});
  const auto answer = session::resolveProtocolRequests(protocols, session::toConfigs(request), server);
  session::handleProtocolResolutions(protocols, session::toResolutions(session::toJSON(answer)), client);
  EXPECT_EQ(client->installedConfiguration("p"), server->installedConfiguration("p"));
  EXPECT_EQ(client->installedConfiguration("p").size(), 1U);
  EXPECT_EQ(toID(toJSON(session::IDType(1, 2))), session::IDType(1, 2));
  const session::UUIDType id;
  EXPECT_EQ(toUUID(toJSON(id)), id);
}

/// Runs `check` in a child and expects it to leave without failures.
template <class Check>
void inChild(const Check& check) {
  const auto child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    check();
    ::_exit(testing::Test::HasFailure() ? 1 : 0);
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

// A death test of this style runs its statement in a fresh process, made by executing this program anew.
template <class Check>
void inFreshProcess(const Check& check) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(std::exit(check() ? 0 : 1), testing::ExitedWithCode(0), "");
}

TEST(Process, DrawsTheSequenceFromOne) {
  inFreshProcess([] { return session::IDType().sequence == 1 && session::IDType().sequence == 2; });
}

TEST(Process, AllocatesStreamsFrom1001) {
  inFreshProcess([] { return framing::allocStreamID() == 1001 && framing::allocStreamID() == 1002; });
}

TEST(Process, SpendsASequenceNumberOnEachIdentifierThatItReads) {
  inFreshProcess([] { return serialization::toID("1 2").sequence == 1 && session::IDType().sequence == 2; });
}

TEST(Process, HasNoThreadBeyondItsOwn) {
  inFreshProcess([] {
    const auto before = threadCount();
    useEverything();
    return threadCount() == before && !testing::Test::HasFailure();
  });
}

TEST(ForkedChild, HasItsOwnProcessIdAndGoesOnCounting) {
  const session::IDType before;
  const auto parent = ::getpid();
  const auto stream = framing::allocStreamID();
  inChild([&] {
    const session::IDType id;
    EXPECT_EQ(id.sequence, before.sequence + 1);
    EXPECT_EQ(id.processId, ::getpid());
    EXPECT_NE(id.processId, parent);
    EXPECT_EQ(framing::allocStreamID(), stream + 1);
  });
  EXPECT_EQ(session::IDType().processId, parent);
}

TEST(ForkedChild, DrawsOtherUuidsThanItsParent) {
  int channel[2];
  ASSERT_EQ(::pipe(channel), 0);
  const auto child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    const auto value = uuid::generateRandom();
    ::_exit(::write(channel[1], value.begin(), 16) == 16 ? 0 : 1);
  }
  boost::uuids::uuid theirs = uuid::generateNil();
  ASSERT_EQ(::read(channel[0], theirs.begin(), 16), 16);
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  ::close(channel[0]);
  ::close(channel[1]);

  EXPECT_NE(uuid::generateRandom(), theirs);
}

TEST(ForkedChild, DoesNotHangWhateverItsParentsThreadsWereDoing) {
  std::atomic<bool> stop = false;
  std::vector<std::thread> threads;
  for (int i = 0; i < 3; ++i) {
    threads.emplace_back([&] {
      while (!stop) {
        uuid::generateRandom();
        session::IDType();
      }
    });
  }
  for (int i = 0; i < 50; ++i) {
    inChild([] {
      for (int draw = 0; draw < 10; ++draw) EXPECT_FALSE(uuid::generateRandom().is_nil());
    });
  }
  stop = true;
  for (auto& thread : threads) thread.join();
}

TEST(ForkedChild, MayUseEverything) {
  inChild(useEverything);
}

}  // namespace
}  // namespace foundation::corvane::common
