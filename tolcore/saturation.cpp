// SPDX-License-Identifier: Apache-2.0
#include "tolcore/saturation.h"

#include <algorithm>
#include <opencv2/core.hpp>

#include "tolbase/exception.h"

void saturationMap(_IplImage* source, _IplImage* destination, double level) {
    if (source == nullptr || destination == nullptr) {
        throw TolException(__FILE__, __LINE__, ExceptionGeneral, TolErrorMessage, "A saturation map needs a picture.");
    }
    cv::Mat const from = cv::cvarrToMat(source);
    cv::Mat to = cv::cvarrToMat(destination);
    if (from.depth() != CV_8U || to.type() != CV_8UC1 || from.size() != to.size()) {
        throw TolException(__FILE__, __LINE__, ExceptionGeneral, TolErrorMessage,
                           "A saturation map needs a picture of 8 bits a channel and a map of its size.");
    }
    int const channels = from.channels();
    for (int row = 0; row < from.rows; ++row) {
        unsigned char const* pixel = from.ptr<unsigned char>(row);
        unsigned char* mark = to.ptr<unsigned char>(row);
        for (int column = 0; column < from.cols; ++column, pixel += channels) {
            bool const saturated = std::all_of(pixel, pixel + channels, [level](int v) { return v >= level; });
            mark[column] = saturated ? 0 : 255;
        }
    }
}
