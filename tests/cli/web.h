// SPDX-License-Identifier: Apache-2.0
// What the tests of the commands that use the network have in common: servers on this machine, keys in files.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "tests/cli/program.h"
#include "tests/support/fakeflickr.h"
#include "tests/support/webserver.h"

namespace clitest {

constexpr char const* NetworkError =
    "orvelle: Network Connection Error: you may be disconnected from the Internet or the server may be down.\n";

class WebTest : public CliTest {
protected:
    // Retries follow at once.
    WebTest() { Set("web-backoff-milliseconds", "1"); }

    void Set(std::string const& option, std::string const& value) const {
        const Ended ended = Orvelle({"options", "set", option, value});
        EXPECT_EQ(0, ended.status) << ended.err;
    }

    // The file of a key.
    std::string Key(std::string const& key) const {
        WriteFile(Folder() + "/key", key + "\n");
        return Folder() + "/key";
    }

    // The first place that holds the key: the program's words, or a file that it wrote; empty if none.
    std::string Leak(Ended const& ended, std::string const& key) const {
        if (Contains(ended.out, key)) return "standard output";
        if (Contains(ended.err, key)) return "standard error";
        for (auto const& entry : std::filesystem::recursive_directory_iterator(Folder())) {
            if (!entry.is_regular_file() || entry.path() == Folder() + "/key") continue;
            if (Contains(ReadFile(entry.path().string()), key)) return entry.path().string();
        }
        return "";
    }

    // An address of this machine where nobody listens.
    static std::string Nowhere() {
        support::WebServer server([](std::string const&) { return support::WebReply(""); });
        return server.Url("/");
    }

    // A folder that is empty at first.
    std::string Home() const {
        std::filesystem::create_directories(Folder() + "/home");
        return Folder() + "/home";
    }
};

}  // namespace clitest
