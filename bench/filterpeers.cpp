// SPDX-License-Identifier: Apache-2.0
#include "bench/filterpeers.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include <jpeglib.h>

#include <opencv2/imgproc.hpp>
#include <stdexcept>
#include <vector>

namespace bench {
namespace {

// Keeps the compiler from leaving out what nobody looks at.
volatile double sink;

cv::Mat EncodeAndDecode(cv::Mat const& picture, int quality) {
    jpeg_error_mgr errors;
    jpeg_compress_struct encoder;
    encoder.err = jpeg_std_error(&errors);
    jpeg_create_compress(&encoder);
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&encoder, &bytes, &size);
    encoder.image_width = static_cast<JDIMENSION>(picture.cols);
    encoder.image_height = static_cast<JDIMENSION>(picture.rows);
    encoder.input_components = picture.channels();
    encoder.in_color_space = picture.channels() == 1 ? JCS_GRAYSCALE : JCS_EXT_BGR;
    jpeg_set_defaults(&encoder);
    jpeg_set_quality(&encoder, quality, TRUE);
    encoder.comp_info[0].h_samp_factor = encoder.comp_info[0].v_samp_factor = 1;
    jpeg_start_compress(&encoder, TRUE);
    while (encoder.next_scanline < encoder.image_height) {
        auto* row = const_cast<JSAMPROW>(picture.ptr(static_cast<int>(encoder.next_scanline)));
        jpeg_write_scanlines(&encoder, &row, 1);
    }
    jpeg_finish_compress(&encoder);
    jpeg_destroy_compress(&encoder);
    cv::Mat result(picture.size(), picture.type());
    jpeg_decompress_struct decoder;
    decoder.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&decoder);
    jpeg_mem_src(&decoder, bytes, size);
    jpeg_read_header(&decoder, TRUE);
    decoder.out_color_space = picture.channels() == 1 ? JCS_GRAYSCALE : JCS_EXT_BGR;
    jpeg_start_decompress(&decoder);
    while (decoder.output_scanline < decoder.output_height) {
        JSAMPROW row = result.ptr(static_cast<int>(decoder.output_scanline));
        jpeg_read_scanlines(&decoder, &row, 1);
    }
    jpeg_finish_decompress(&decoder);
    jpeg_destroy_decompress(&decoder);
    std::free(bytes);
    return result;
}

cv::Mat GreyOf(cv::Mat const& picture) {
    cv::Mat grey;
    cv::cvtColor(picture, grey, cv::COLOR_BGR2GRAY);
    return grey;
}

// The magnitudes of the residual; for the wavelet at every other place only.
cv::Mat ResidualOf(cv::Mat const& grey, bool median) {
    cv::Mat residual;
    if (median) {
        cv::medianBlur(grey, residual, 3);
        cv::absdiff(grey, residual, residual);
        residual.convertTo(residual, CV_32F);
        return residual;
    }
    cv::Mat const kernel = (cv::Mat_<float>(2, 2) << 0.5, -0.5, -0.5, 0.5);
    cv::filter2D(grey, residual, CV_32F, kernel, cv::Point(0, 0));
    cv::Mat details;
    cv::resize(residual, details, cv::Size(grey.cols / 2, grey.rows / 2), 0, 0, cv::INTER_NEAREST);
    return cv::abs(details);
}

}  // namespace

void PlainErrorLevel(cv::Mat const& picture, int quality) {
    cv::Mat level;
    cv::absdiff(picture, EncodeAndDecode(picture, quality), level);
    sink = level.data[0];
}

void PlainNoise(cv::Mat const& picture, bool median, int blockSize) {
    cv::Mat const residual = ResidualOf(GreyOf(picture), median);
    int const size = median ? blockSize : blockSize / 2;
    cv::Mat map((residual.rows + size - 1) / size, (residual.cols + size - 1) / size, CV_8U);
    for (int y = 0; y < map.rows; ++y) {
        for (int x = 0; x < map.cols; ++x) {
            cv::Mat const block =
                residual(cv::Rect(x * size, y * size, size, size) & cv::Rect(0, 0, residual.cols, residual.rows))
                    .clone();
            std::vector<float> values(block.begin<float>(), block.end<float>());
            auto const middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
            std::nth_element(values.begin(), middle, values.end());
            map.at<uchar>(y, x) = cv::saturate_cast<uchar>(*middle / 0.6745 * 50.0);
        }
    }
    cv::Mat shown;
    cv::resize(map, shown, picture.size(), 0, 0, cv::INTER_NEAREST);
    cv::cvtColor(shown, shown, cv::COLOR_GRAY2BGR);
    sink = shown.data[0];
}

void PlainChannel(cv::Mat const& picture) {
    cv::Mat converted;
    cv::cvtColor(picture, converted, cv::COLOR_BGR2YCrCb);
    cv::Mat channel;
    cv::extractChannel(converted, channel, 0);
    sink = channel.data[0];
}

void PlainEqualisation(cv::Mat const& picture) {
    cv::Mat converted;
    cv::cvtColor(picture, converted, cv::COLOR_BGR2YCrCb);
    std::vector<cv::Mat> planes;
    cv::split(converted, planes);
    cv::equalizeHist(planes[0], planes[0]);
    cv::merge(planes, converted);
    cv::cvtColor(converted, converted, cv::COLOR_YCrCb2BGR);
    sink = converted.data[0];
}

void PlainHistogram(cv::Mat const& picture) {
    cv::Mat const grey = GreyOf(picture);
    int const levels = 256;
    float const ends[] = {0, 256};
    float const* range = ends;
    cv::Mat counts;
    int const first = 0;
    cv::calcHist(&grey, 1, &first, cv::noArray(), counts, 1, &levels, &range);
    for (int channel = 0; channel < 3; ++channel) {
        cv::calcHist(&picture, 1, &channel, cv::noArray(), counts, 1, &levels, &range);
    }
    sink = static_cast<double>(counts.at<float>(0));
}

void PlainGhost(cv::Mat const& picture, int first, int last) {
    cv::Mat const grey = GreyOf(picture);
    for (int quality = first; quality <= last; ++quality) {
        sink = cv::norm(grey, EncodeAndDecode(grey, quality), cv::NORM_L2SQR);
    }
}

void PlainDctHistogram(cv::Mat const& picture) {
    cv::Mat planes;
    GreyOf(picture).convertTo(planes, CV_32F, 1.0, -128.0);
    std::vector<int> counts(2048);
    cv::Mat block;
    for (int y = 0; y + 8 <= planes.rows; y += 8) {
        for (int x = 0; x + 8 <= planes.cols; x += 8) {
            cv::dct(planes(cv::Rect(x, y, 8, 8)), block);
            int const value = static_cast<int>(std::lround(block.at<float>(0, 1) / 3.0F));
            ++counts[static_cast<std::size_t>(value + 1024)];
        }
    }
    sink = counts[1024];
}

void PlainDimples(cv::Mat const& picture) {
    cv::Mat differences;
    cv::Matx13f const second(1.0F, -2.0F, 1.0F);
    cv::sepFilter2D(GreyOf(picture), differences, CV_32F, second, second);
    cv::Mat energy;
    cv::sqrBoxFilter(differences, energy, CV_32F, cv::Size(8, 8));
    cv::sqrt(energy + 3.0, energy);
    differences /= energy;
    double sums[64] = {};
    double squares[64] = {};
    for (int y = 0; y < differences.rows; ++y) {
        for (int x = 0; x < differences.cols; ++x) {
            double const value = differences.at<float>(y, x);
            sums[y % 8 * 8 + x % 8] += value;
            squares[y % 8 * 8 + x % 8] += value * value;
        }
    }
    sink = *std::max_element(sums, sums + 64) + squares[0];
}

}  // namespace bench
