#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "tests/Linux/X11/X11TestServer.hpp"

namespace harbex::testing_x11 {

// One Xvfb + openbox per test program, started on first use and stopped at exit.
inline TestServer& sharedServer() {
    static auto server = std::make_unique<TestServer>();
    return *server;
}

// Skips the calling test when no X server could be started here.
#define HARBEX_REQUIRE_X_SERVER()                                                        \
    do {                                                                                 \
        if (!::harbex::testing_x11::sharedServer().ready())                              \
            GTEST_SKIP() << "Xvfb could not be started, so there is no display to test"; \
    } while (false)

// Our own connection to the shared server; fails the test when it cannot connect.
inline std::unique_ptr<X11Connection> connect() {
    auto connection = X11Connection::open(sharedServer().display().c_str());
    EXPECT_TRUE(connection.has_value());
    return connection ? std::move(*connection) : nullptr;
}

}  // namespace harbex::testing_x11
