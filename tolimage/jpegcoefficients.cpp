// SPDX-License-Identifier: Apache-2.0
#include "tolimage/jpegcoefficients.h"

#include <csetjmp>
#include <cstdio>

#include <jpeglib.h>
// What it declares depends on the above.
#include <jerror.h>

#include <string>

#include "tolbase/exception.h"
#include "tolbase/limits.h"
#include "tolbase/progress.h"
#include "tolimage/codec.h"
#include "tolimage/jpeg_file.h"
#include "tolimage/jpeginfo.h"

namespace {

// As for decoding: no picture of so few bytes is honest, and each scan goes over the whole of it.
constexpr uint64_t kPixelsPerByte = 4 * 512;
constexpr int kMaxScans = 256;

struct ErrorTrap {
    jpeg_error_mgr manager{};
    std::jmp_buf back{};
    char remark[JMSG_LENGTH_MAX]{};
    int code = 0;
    char damage[JMSG_LENGTH_MAX]{};  // the first warning that stands for wrong or missing blocks
    bool damaged = false;
    bool ended = false;  // the file ended before its end marker
    bool aborted = false;
};

void OnCoefficientError(j_common_ptr info) {
    auto* trap = reinterpret_cast<ErrorTrap*>(info->err);
    trap->code = info->err->msg_code;
    info->err->format_message(info, trap->remark);
    std::longjmp(trap->back, 1);
}
void OnCoefficientMessage(j_common_ptr info, int level) {
    if (level >= 0) return;
    auto* trap = reinterpret_cast<ErrorTrap*>(info->err);
    switch (info->err->msg_code) {
        case JWRN_JPEG_EOF:
            trap->ended = true;
            return;
        case JWRN_HIT_MARKER:
        case JWRN_HUFF_BAD_CODE:
        case JWRN_ARITH_BAD_CODE:
        case JWRN_MUST_RESYNC:
        case JWRN_BOGUS_PROGRESSION:
        case JWRN_NOT_SEQUENTIAL:
            if (!trap->damaged) info->err->format_message(info, trap->damage);
            trap->damaged = true;
            return;
        default:
            return;
    }
}
void OnCoefficientOutput(j_common_ptr /*info*/) {}
void OnCoefficientProgress(j_common_ptr info) {
    auto* trap = reinterpret_cast<ErrorTrap*>(info->err);
    trap->aborted = tcvHasAborted();
    bool const endless = reinterpret_cast<j_decompress_ptr>(info)->input_scan_number > kMaxScans;
    if (endless) std::snprintf(trap->remark, sizeof trap->remark, "more than %d scans", kMaxScans);
    if (trap->aborted || endless) std::longjmp(trap->back, 1);
}

[[noreturn]] void Fail(int line, wxString const& message) {
    throw TolException(__FILE__, line, ExceptionGeneral, TolErrorMessage, message);
}

bool IsUnsupported(int code) {
    return code == JERR_BAD_PRECISION || code == JERR_SOF_UNSUPPORTED || code == JERR_ARITH_NOTIMPL ||
           code == JERR_NOT_COMPILED;
}

// Every way out destroys libjpeg's object; the functions with a setjmp hold no object that has a destructor.
class Reader {
public:
    Reader() {
        jpeg_std_error(&m_trap.manager);
        m_trap.manager.error_exit = OnCoefficientError;
        m_trap.manager.emit_message = OnCoefficientMessage;
        m_trap.manager.output_message = OnCoefficientOutput;
        m_progress.progress_monitor = OnCoefficientProgress;
        m_decoder.err = &m_trap.manager;
    }
    ~Reader() { jpeg_destroy_decompress(&m_decoder); }
    Reader(Reader const&) = delete;
    Reader& operator=(Reader const&) = delete;

    bool ReadHead(std::string const& bytes) {
        if (setjmp(m_trap.back) != 0) return false;
        jpeg_create_decompress(&m_decoder);
        m_decoder.progress = &m_progress;
        jpeg_mem_src(&m_decoder, reinterpret_cast<unsigned char const*>(bytes.data()),
                     static_cast<unsigned long>(bytes.size()));
        return jpeg_read_header(&m_decoder, TRUE) == JPEG_HEADER_OK;
    }
    bool ReadArrays() {
        if (setjmp(m_trap.back) != 0) return false;
        m_arrays = jpeg_read_coefficients(&m_decoder);
        return m_arrays != nullptr;
    }
    // `values` has the room already.
    bool Copy(int component, int naturalIndex, int16_t* values) {
        if (setjmp(m_trap.back) != 0) return false;
        CopyRows(component, naturalIndex, values);
        return true;
    }
    jpeg_decompress_struct const& Info() const { return m_decoder; }
    bool IsAborted() const { return m_trap.aborted; }

    [[noreturn]] void FailWithRemark() const {
        char const* kind = IsUnsupported(m_trap.code) ? "Unsupported: " : m_trap.ended ? "Truncated: " : "Corrupt: ";
        Fail(__LINE__, kind + wxString::FromUTF8(m_trap.remark));
    }
    // An end that came early takes no block away where all of them stand in one scan of Huffman codes: the decoder
    // would have run out of codes then, which is a remark of its own.
    void RequireSound() {
        bool const several = jpeg_has_multiple_scans(&m_decoder) != FALSE || m_decoder.arith_code != FALSE;
        if (m_trap.damaged) {
            Fail(__LINE__, (m_trap.ended ? "Truncated: " : "Corrupt: ") + wxString::FromUTF8(m_trap.damage));
        }
        if (m_trap.ended && several) Fail(__LINE__, "Truncated: the file ends before the end of its picture");
    }

private:
    void CopyRows(int component, int naturalIndex, int16_t* values) {
        jpeg_component_info const& info = m_decoder.comp_info[component];
        for (JDIMENSION row = 0; row < info.height_in_blocks; ++row) {
            JBLOCKARRAY const blocks = m_decoder.mem->access_virt_barray(reinterpret_cast<j_common_ptr>(&m_decoder),
                                                                         m_arrays[component], row, 1, FALSE);
            for (JDIMENSION column = 0; column < info.width_in_blocks; ++column) {
                *values++ = blocks[0][column][naturalIndex];
            }
        }
    }

    jpeg_decompress_struct m_decoder{};
    jpeg_progress_mgr m_progress{};
    ErrorTrap m_trap;
    jvirt_barray_ptr* m_arrays = nullptr;
};

// Also for a picture that claims more pixels than so short a file can hold.
void RequireSize(jpeg_decompress_struct const& info, size_t fileBytes) {
    try {
        codec::CheckSize(info.image_width, info.image_height, fileBytes, kPixelsPerByte);
    } catch (codec::ImplausibleSize const& error) {
        Fail(__LINE__, "Corrupt: " + wxString::FromUTF8(error.what()));
    }
}

}  // namespace

JpegCoefficients ReadJpegCoefficients(wxString const& path, int component, int zigzagIndex) {
    if (zigzagIndex < 0 || zigzagIndex > 63) Fail(__LINE__, "A DCT coefficient has a number from 0 to 63.");
    std::string bytes;
    if (!ReadJpegFile(path, true, bytes)) Fail(__LINE__, "The file is no JPEG or can't be read.");
    Reader reader;
    if (!reader.ReadHead(bytes)) reader.FailWithRemark();
    RequireSize(reader.Info(), bytes.size());
    if (component < 0 || component >= reader.Info().num_components) {
        Fail(__LINE__, "The picture has no such colour component.");
    }
    bool const complete = reader.ReadArrays();
    if (reader.IsAborted()) return {};
    if (!complete) reader.FailWithRemark();
    reader.RequireSound();
    jpeg_component_info const& info = reader.Info().comp_info[component];
    int const natural = tcvZigZagIndex(zigzagIndex);
    JpegCoefficients result;
    result.blocksAcross = static_cast<int>(info.width_in_blocks);
    result.blocksDown = static_cast<int>(info.height_in_blocks);
    result.componentCount = reader.Info().num_components;
    if (info.quant_table != nullptr) result.step = info.quant_table->quantval[natural];
    result.values.resize(static_cast<size_t>(info.width_in_blocks) * info.height_in_blocks);
    if (!reader.Copy(component, natural, result.values.data())) reader.FailWithRemark();
    return result;
}
