// SPDX-License-Identifier: Apache-2.0
// What the filters calculate in its plain form: OpenCV and libjpeg as a short script would use them, on one thread.
//
// Threads: functions without state; any thread. Pictures are of 8 bits, blue, green and red.
#pragma once
#include <opencv2/core.hpp>

namespace bench {

void PlainErrorLevel(cv::Mat const& picture, int quality);
void PlainNoise(cv::Mat const& picture, bool median, int blockSize);
void PlainChannel(cv::Mat const& picture);
void PlainEqualisation(cv::Mat const& picture);
void PlainHistogram(cv::Mat const& picture);
void PlainGhost(cv::Mat const& picture, int first, int last);
// Of the first coefficient across, quantised in steps of 3.
void PlainDctHistogram(cv::Mat const& picture);
// The means of the 64 places of a block only, of the whole picture in floating point; no pattern is looked for in them.
void PlainDimples(cv::Mat const& picture);

}  // namespace bench
