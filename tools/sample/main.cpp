// SPDX-License-Identifier: Apache-2.0
// orvelle-sample: makes a photograph that no camera took and a tampered copy of it, for tests and demonstrations.
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "tolbase/file.h"
#include "tools/sample/camera.h"
#include "tools/sample/photo.h"
#include "tools/sample/scene.h"

namespace {

constexpr int ExitUsage = 2;
constexpr int ExitFailure = 5;
constexpr int MinSide = 320;
constexpr int MaxSide = 12000;

constexpr char const* Help =
    "Usage: orvelle-sample --out FOLDER [--width W] [--height H] [--seed N]\n"
    "\n"
    "Writes two files into FOLDER, which is made if need be, and replaces files of these names:\n"
    "  sample.jpg           an invented photograph with a camera's EXIF data\n"
    "  sample-tampered.jpg  a copy in which a part was pasted a second time\n"
    "and prints the pasted region as: sample-tampered.jpg X Y WIDTH HEIGHT\n"
    "\n"
    "  --out FOLDER   where to write\n"
    "  --width W      pixels, 320 to 12000 (4000)\n"
    "  --height H     pixels, 320 to 12000 (3000)\n"
    "  --seed N       another landscape and noise, 0 to 4294967295 (1)\n"
    "  --help         this text\n"
    "\n"
    "No side may be more than twice as long as the other. The same options give the\n"
    "same bytes.\n";

struct Options {
    std::string folder;
    int width = 4000;
    int height = 3000;
    uint32_t seed = 1;
    bool help = false;
};

class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

template <typename Number>
Number ParseNumber(std::string const& option, std::string const& text, Number low, Number high) {
    Number number{};
    char const* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    if (result.ec != std::errc() || result.ptr != end || number < low || number > high) {
        throw UsageError(option + " takes a number from " + std::to_string(low) + " to " + std::to_string(high) +
                         ", not \"" + text + "\"");
    }
    return number;
}

Options ParseOptions(std::vector<std::string> const& arguments) {
    Options options;
    for (size_t i = 0; i < arguments.size(); ++i) {
        std::string const& name = arguments[i];
        if (name == "--help") {
            options.help = true;
            return options;
        }
        if (name != "--out" && name != "--width" && name != "--height" && name != "--seed") {
            throw UsageError("unknown argument \"" + name + "\"");
        }
        if (i + 1 == arguments.size()) throw UsageError(name + " needs a value");
        std::string const& value = arguments[++i];
        if (name == "--out") options.folder = value;
        if (name == "--width") options.width = ParseNumber<int>(name, value, MinSide, MaxSide);
        if (name == "--height") options.height = ParseNumber<int>(name, value, MinSide, MaxSide);
        if (name == "--seed") options.seed = ParseNumber<uint32_t>(name, value, 0, UINT32_MAX);
    }
    if (options.folder.empty()) throw UsageError("--out FOLDER is missing");
    if (options.width > 2 * options.height || options.height > 2 * options.width) {
        throw UsageError("one side is more than twice as long as the other");
    }
    return options;
}

void Write(std::string const& path, std::string const& bytes) {
    if (!WriteFileAtomically(PathFromBytes(path), bytes)) throw std::runtime_error(path + ": can't be written");
}

void Run(Options const& options) {
    if (!CreateDirIfNotExists(PathFromBytes(options.folder))) {
        throw std::runtime_error(options.folder + ": the folder can't be made");
    }
    const sample::Picture picture =
        sample::Photograph(sample::RenderScene(options.width, options.height, options.seed), options.seed);
    const sample::Photo photo = sample::MakePhoto(picture, options.seed);
    Write(options.folder + "/sample.jpg", photo.jpeg);
    const sample::TamperedPhoto tampered =
        sample::Tamper(photo, sample::GetHut(options.width, options.height, options.seed), options.seed);
    Write(options.folder + "/sample-tampered.jpg", tampered.jpeg);
    sample::Box const& region = tampered.region;
    std::cout << "sample-tampered.jpg " << region.x << ' ' << region.y << ' ' << region.width << ' ' << region.height
              << '\n';
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const Options options = ParseOptions(std::vector<std::string>(argv + 1, argv + argc));
        if (options.help) {
            std::cout << Help;
        } else {
            Run(options);
        }
        std::cout.flush();
        if (!std::cout) throw std::runtime_error("standard output can't be written");
        return EXIT_SUCCESS;
    } catch (UsageError const& error) {
        std::cerr << "orvelle-sample: " << error.what() << "\nTry orvelle-sample --help\n";
        return ExitUsage;
    } catch (std::exception const& error) {
        std::cerr << "orvelle-sample: " << error.what() << '\n';
        return ExitFailure;
    }
}
