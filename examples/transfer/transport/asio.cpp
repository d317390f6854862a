// SPDX-License-Identifier: Apache-2.0
// What Boost.Asio declares in its headers under BOOST_ASIO_SEPARATE_COMPILATION.
#include <utility>  // before Boost.Asio, which forgets to include it in some versions
//
#include <boost/asio/impl/src.hpp>
