// SPDX-License-Identifier: Apache-2.0
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <exception>
#include <new>

#include "apps/cli/exitcodes.h"
#include "apps/cli/program.h"

namespace {

// Without memory: there may be none.
void Tell(char const* text) {
    if (write(STDERR_FILENO, text, std::strlen(text)) < 0) std::_Exit(cli::ExitInternal);
}

// Where an exception can't get through: a destructor of some library that needs memory when there is none. The files
// that are being written have no names yet, so that nothing half-done stays.
[[noreturn]] void EndWithAWord() {
    static bool begun = false;
    if (!begun) {
        begun = true;
        Tell("orvelle: internal error: ");
        try {
            if (std::exception_ptr const thrown = std::current_exception()) std::rethrow_exception(thrown);
            Tell("ended without a reason");
        } catch (std::bad_alloc const&) {
            Tell("out of memory");
        } catch (std::exception const& error) {
            Tell(error.what());
        } catch (...) {
            Tell("unknown");
        }
        Tell("\n");
    }
    std::_Exit(cli::ExitInternal);
}

}  // namespace

int main(int argc, char** argv) {
    std::set_terminate(EndWithAWord);
    return cli::RunProgram(argc, argv);
}
