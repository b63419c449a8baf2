// SPDX-License-Identifier: Apache-2.0
// Camera models with the picture sizes that they write, compiled in. What the sizes rest on is told in data/README.md.
//
// Threads: the table is constant; any thread. Ownership: plain values.
#pragma once
#include <cstddef>
#include <string>
#include <vector>

#include "tolbase/export.h"

// A picture size in pixels.
struct Resolution {
    int longSide = 0;
    int shortSide = 0;
};
inline bool operator==(Resolution const& a, Resolution const& b) {
    return a.longSide == b.longSide && a.shortSide == b.shortSide;
}
inline bool operator!=(Resolution const& a, Resolution const& b) {
    return !(a == b);
}

// What is known of one camera model.
class ORV_API DpReviewInfo {
public:
    DpReviewInfo();
    DpReviewInfo(std::string make, std::string model, Resolution largest, std::vector<Resolution> resolutions,
                 std::string referenceUrl);
    ~DpReviewInfo();

    // UTF-8, as EXIF spells them.
    std::string const& getMake() const { return make; }
    std::string const& getModel() const { return model; }
    // The largest size known.
    Resolution getLargest() const { return largest; }
    // Every size that the model writes; empty where no source gives all of them, and then nothing follows for a size
    // that is not the largest.
    std::vector<Resolution> const& getResolutions() const { return resolutions; }
    bool hasResolution(Resolution const& size) const;
    // Where the list of sizes was taken from; empty where there is none.
    std::string getReferenceUrl() const { return referenceUrl; }

private:
    std::string make;
    std::string model;
    Resolution largest;
    std::vector<Resolution> resolutions;
    std::string referenceUrl;
};

// The compiled table.
class ORV_API DpReviewCollection {
public:
    // True, and `info` filled, if the model is known; else `info` stays as it is. Make and model are compared as EXIF
    // spells them, without blanks and NULs around them and without the case of ASCII letters.
    bool find(std::string const& make, std::string const& model, DpReviewInfo& info) const;
    // How many models there are.
    size_t size() const;
};
