// SPDX-License-Identifier: Apache-2.0
// orvelle-dimples-bench: how often tcvJpegDimplesDetection finds dimples where an encoder left some, and where none
// did.
//
// Every picture given is first reduced by a factor of 2.3 by averaging, which takes away what its own encoder left: no
// period of 8 or 16 pixels is one of 8 afterwards. Then crops of several sizes go through encoders that are known:
// nothing at all, rounding to the nearest (once, twice on one grid, twice on two grids, libjpeg's own), down and up. A
// further crop moves the grid to a place that is known.
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <functional>
#include <iomanip>
#include <iostream>
#include <map>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <random>
#include <string>
#include <vector>

#include "bench/blockencoder.h"
#include "tolbase/file.h"
#include "tolbase/image.h"
#include "tolbase/text.h"
#include "tolcore/dimples.h"
#include "tolimage/imageio.h"
#include "tools/sample/jpegcodec.h"

namespace {

using bench::EncodeInBlocks;
using bench::Rounding;

constexpr double kThreshold = 13.0;
constexpr std::array<int, 7> kQualities = {50, 60, 70, 80, 90, 95, 100};
constexpr int kWhole = 0;
constexpr std::array<int, 5> kSizes = {128, 256, 512, 1024, kWhole};
constexpr int kMinSide = 256;
constexpr double kReduction = 2.3;
constexpr int kPeriod = 8;

struct Encoder {
    std::string name;
    bool leavesDimples;
    std::function<cv::Mat(cv::Mat const&, int quality)> encode;
};

cv::Mat ThroughLibjpeg(cv::Mat const& picture, int quality) {
    sample::Picture source(picture.cols, picture.rows);
    cv::Mat pixels(picture.rows, picture.cols, CV_8UC3, source.pixels.data());
    cv::cvtColor(picture, pixels, cv::COLOR_BGR2RGB);
    sample::Picture decoded = sample::Decode(sample::EncodeAsProgram(source, quality));
    cv::Mat result;
    cv::cvtColor(cv::Mat(decoded.height, decoded.width, CV_8UC3, decoded.pixels.data()), result, cv::COLOR_RGB2BGR);
    return result;
}

// The second grid lies three pixels to the right and five down of the first one's.
cv::Mat TwiceShifted(cv::Mat const& picture, int quality) {
    const cv::Mat first = EncodeInBlocks(picture, 85, Rounding::Nearest);
    cv::Mat shifted;
    cv::copyMakeBorder(first, shifted, 3, 0, 5, 0, cv::BORDER_REFLECT_101);
    return EncodeInBlocks(shifted, quality, Rounding::Nearest)(cv::Rect(5, 3, picture.cols, picture.rows)).clone();
}

std::vector<Encoder> MakeEncoders() {
    return {
        {"none", false, [](cv::Mat const& picture, int) { return picture; }},
        {"nearest", false, [](cv::Mat const& p, int q) { return EncodeInBlocks(p, q, Rounding::Nearest); }},
        {"nearest twice", false,
         [](cv::Mat const& p, int q) {
             return EncodeInBlocks(EncodeInBlocks(p, 85, Rounding::Nearest), q, Rounding::Nearest);
         }},
        {"nearest, two grids", false, TwiceShifted},
        {"libjpeg", false, ThroughLibjpeg},
        {"down", true, [](cv::Mat const& p, int q) { return EncodeInBlocks(p, q, Rounding::Down); }},
        {"up", true, [](cv::Mat const& p, int q) { return EncodeInBlocks(p, q, Rounding::Up); }},
        {"down, then libjpeg 95", true,
         [](cv::Mat const& p, int q) { return ThroughLibjpeg(EncodeInBlocks(p, q, Rounding::Down), 95); }},
        {"down, then libjpeg 85", true,
         [](cv::Mat const& p, int q) { return ThroughLibjpeg(EncodeInBlocks(p, q, Rounding::Down), 85); }},
    };
}

struct Tally {
    int trials = 0;
    int found = 0;   // at or above the threshold
    int placed = 0;  // of those, with the right place
    double least = 1e300;
    double greatest = 0;
};

using Tallies = std::map<std::string, std::map<int, Tally>>;  // by encoder; by quality or size

void Count(Tally& tally, PCEoutput const& result, int dx, int dy) {
    ++tally.trials;
    const bool found = result.strength >= kThreshold;
    tally.found += found ? 1 : 0;
    tally.placed += found && result.xOffset == dx && result.yOffset == dy ? 1 : 0;
    tally.least = std::min(tally.least, result.strength);
    tally.greatest = std::max(tally.greatest, result.strength);
}

class Trials {
public:
    explicit Trials(bool verbose) : m_verbose(verbose) {}

    void Run(std::string const& name, cv::Mat const& picture) {
        ++m_pictures;
        for (const int size : kSizes) {
            if (size > picture.cols || size > picture.rows) continue;
            // Away from the middle and the corners alike; another place for each picture and size.
            const cv::Rect whole(0, 0, picture.cols, picture.rows);
            const cv::Rect box =
                size == kWhole ? whole : cv::Rect(Random(picture.cols - size), Random(picture.rows - size), size, size);
            for (Encoder const& encoder : m_encoders) {
                for (const int quality : kQualities) {
                    RunOne(name, encoder, quality, size, picture(box).clone());
                    if (encoder.name == "none") break;
                }
            }
        }
    }

    void Report() const {
        std::cout << m_pictures << " pictures\n";
        Print("quality", m_byQuality);
        Print("side of the crop", m_bySize);
    }

private:
    int Random(int below) { return below <= 0 ? 0 : static_cast<int>(m_random() % static_cast<unsigned>(below)); }

    void RunOne(std::string const& name, Encoder const& encoder, int quality, int size, cv::Mat const& crop) {
        const cv::Mat encoded = encoder.encode(crop, quality);
        const int dx = Random(kPeriod);
        const int dy = Random(kPeriod);
        const cv::Rect box(dx, dy, crop.cols - kPeriod, crop.rows - kPeriod);
        PCEoutput result;
        tcvJpegDimplesDetection(encoded(box).clone(), result);
        const int x = (kPeriod - dx) % kPeriod;
        const int y = (kPeriod - dy) % kPeriod;
        Count(m_byQuality[encoder.name][encoder.name == "none" ? 0 : quality], result, x, y);
        Count(m_bySize[encoder.name][size], result, x, y);
        if (!m_verbose) return;
        std::cout << name << '\t' << encoder.name << '\t' << quality << '\t' << size << '\t' << result.strength << '\t'
                  << (result.xOffset == x && result.yOffset == y) << '\n';
    }

    void Print(std::string const& column, Tallies const& tallies) const {
        std::cout << "\nencoder | " << column << " | trials | found | at the right place | least | greatest\n"
                  << std::fixed << std::setprecision(1);
        for (Encoder const& encoder : m_encoders) {
            const auto rows = tallies.find(encoder.name);
            if (rows == tallies.end()) continue;
            for (auto const& [key, tally] : rows->second) {
                std::cout << encoder.name << " | " << (key == 0 ? "all" : std::to_string(key)) << " | " << tally.trials
                          << " | " << tally.found << " | ";
                std::cout << (encoder.leavesDimples ? std::to_string(tally.placed) : "-") << " | " << tally.least
                          << " | " << tally.greatest << '\n';
            }
        }
    }

    bool m_verbose;
    int m_pictures = 0;
    std::vector<Encoder> m_encoders = MakeEncoders();
    std::mt19937 m_random{20170};
    Tallies m_byQuality;
    Tallies m_bySize;
};

void AddNoise(cv::Mat& picture, double deviation, unsigned seed) {
    cv::RNG random(seed);
    cv::Mat noise(picture.size(), CV_16SC3);
    random.fill(noise, cv::RNG::NORMAL, 0, deviation);
    cv::Mat sum;
    cv::add(picture, noise, sum, cv::noArray(), CV_16S);
    sum.convertTo(picture, CV_8U);
}

// Pictures that the program draws itself: a slope with little noise, one with much, and noise alone.
std::map<std::string, cv::Mat> DrawPictures() {
    std::map<std::string, cv::Mat> pictures;
    cv::Mat slope(1200, 1600, CV_8UC3);
    for (int y = 0; y < slope.rows; ++y) {
        for (int x = 0; x < slope.cols; ++x) {
            slope.at<cv::Vec3b>(y, x) = {static_cast<unsigned char>(20 + x / 9), static_cast<unsigned char>(20 + y / 7),
                                         static_cast<unsigned char>(20 + (x + y) / 15)};
        }
    }
    pictures["(slope)"] = slope.clone();
    AddNoise(slope, 2, 1);
    pictures["(slope, noise 2)"] = slope.clone();
    AddNoise(slope, 12, 2);
    pictures["(slope, noise 12)"] = slope.clone();
    cv::Mat noise(1200, 1600, CV_8UC3, cv::Scalar(128, 128, 128));
    AddNoise(noise, 40, 3);
    pictures["(noise)"] = noise;
    return pictures;
}

cv::Mat LoadReduced(wxString const& path) {
    const Image image = Image(tcvLoadImage(path, true, false)).ToColor();
    if (!image.IsOk()) return {};
    const cv::Mat picture = image;
    cv::Mat reduced;
    cv::resize(picture, reduced, cv::Size(), 1 / kReduction, 1 / kReduction, cv::INTER_AREA);
    if (reduced.cols < kMinSide || reduced.rows < kMinSide) return {};
    return reduced;
}

VecString ListFiles(wxString const& folder) {
    return GetAllFiles(folder, {"jpg", "jpeg", "png", "tif", "bmp", "heic"}, false);
}

// The pictures as they are: what their own encoders left is not known.
void ReportAsTheyAre(VecString const& files) {
    int found = 0;
    int atOrigin = 0;
    int count = 0;
    for (wxString const& file : files) {
        const Image image = Image(tcvLoadImage(file, true, false)).ToColor();
        if (!image.IsOk()) continue;
        ++count;
        PCEoutput result;
        tcvJpegDimplesDetection(static_cast<cv::Mat>(image), result);
        const bool present = result.strength >= kThreshold;
        found += present ? 1 : 0;
        atOrigin += present && result.xOffset == 0 && result.yOffset == 0 ? 1 : 0;
    }
    std::cout << "\nthe pictures as they are: " << count << ", dimples found in " << found << ", at [0, 0] in "
              << atOrigin << '\n';
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> arguments(argv + 1, argv + argc);
    const bool verbose = !arguments.empty() && arguments.front() == "--verbose";
    if (verbose) arguments.erase(arguments.begin());
    if (arguments.empty()) {
        std::cerr << "Usage: orvelle-dimples-bench [--verbose] FOLDER...\n";
        return 2;
    }
    Trials trials(verbose);
    for (auto const& [name, picture] : DrawPictures()) trials.Run(name, picture);
    VecString files;
    for (std::string const& folder : arguments) {
        for (wxString const& file : ListFiles(TolFromUtf8(folder))) files.push_back(file);
    }
    for (wxString const& file : files) {
        const cv::Mat picture = LoadReduced(file);
        if (!picture.empty()) trials.Run(TolToUtf8(file), picture);
    }
    trials.Report();
    ReportAsTheyAre(files);
    return 0;
}
