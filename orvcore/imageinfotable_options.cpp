// SPDX-License-Identifier: Apache-2.0
// The options group "File Format": what the rules compare with.
#include <wx/translation.h>

#include "orvcore/context.h"
#include "orvcore/imageinfotable.h"
#include "tolimage/metadata.h"

int ImageInfoTable::m_optionGroupId = -1;

namespace {

// Places of the options within their group.
enum FileFormatOption : size_t {
    OptionMinFileSize,
    OptionMaxFileSize,
    OptionMinPixelSize,
    OptionMaxPixelSize,
    OptionWidthMultiple,
    OptionHeightMultiple,
    OptionExpectedBpp,
    OptionExpectedChannels,
    OptionWarnSoftwareQt,
    OptionWarnCameraNotFound,
    OptionWarnQtNotFound,
    OptionSoftwareKeywords,
    OptionFormatWhitelist,
    OptionAspectWhitelist,
    OptionIccModels,
    OptionCount
};

Parameter MakeSwitch(wxString const& name) {
    return CreateParameterOption(name, "", Strings("No", "Yes", "", "", "", "", "", "", "", ""), 1);
}

VecParameter MakeDefaultOptions() {
    const VecString iccModels = {"iPhone 7", "iPhone 7 Plus", "iPhone 8", "iPhone 8 Plus", "iPhone X", "iPad Pro"};
    VecParameter options;
    options.push_back(CreateParameterInt64("Min File Size", "", 100000));
    options.push_back(CreateParameterInt64("Max File Size", "", 10000000));
    options.push_back(CreateParameterInt("Min Pixel Size", "", 640));
    options.push_back(CreateParameterInt("Max Pixel Size", "", 6000));
    options.push_back(CreateParameterInt("Width Multiple", "", 4));
    options.push_back(CreateParameterInt("Height Multiple", "", 4));
    options.push_back(CreateParameterInt("Expected BPP", "", 24));
    options.push_back(CreateParameterInt("Expected Channels", "", 3));
    options.push_back(MakeSwitch("Warning if software QT"));
    options.push_back(MakeSwitch("Warning if camera not found in QT db"));
    options.push_back(MakeSwitch("Warning if camera present but QT not found"));
    options.push_back(CreateParameterVectorString("Warning Software Keywords", "", GetKnownsSoftwareStrings()));
    options.push_back(CreateParameterVectorString("Format Whitelist", "", {"JPEG", "TIFF", "RAW"}));
    options.push_back(CreateParameterVectorString("Aspect Ratio Whitelist", "", {"1.33", "1.78", "1.50", "1.00"}));
    options.push_back(CreateParameterVectorString("Camera models known to write ICC metadata", "", iccModels));
    return options;
}

}  // namespace

void ImageInfoTable::RegisterProgramOptions() {
    if (m_optionGroupId != -1) return;
    m_optionGroupId = static_cast<int>(GetContext()->GetProgramOptions().size());
    GetContext()->AddProgramOptionsGroup("File Format", MakeDefaultOptions());
}

void ImageInfoTable::LoadConfiguration() {
    const VecVecParameter groups = GetContext()->GetProgramOptions();
    // A context whose options lack the group, or hold a shorter one, is judged by the defaults.
    const bool known = m_optionGroupId >= 0 && static_cast<size_t>(m_optionGroupId) < groups.size() &&
                       groups[static_cast<size_t>(m_optionGroupId)].size() >= OptionCount;
    const VecParameter options = known ? groups[static_cast<size_t>(m_optionGroupId)] : MakeDefaultOptions();

    m_minFileSize = options[OptionMinFileSize].GetValue<int64_t>();
    m_maxFileSize = options[OptionMaxFileSize].GetValue<int64_t>();
    m_minPixelSize = options[OptionMinPixelSize].GetValue<int>();
    m_maxPixelSize = options[OptionMaxPixelSize].GetValue<int>();
    m_widthMultiple = options[OptionWidthMultiple].GetValue<int>();
    m_heightMultiple = options[OptionHeightMultiple].GetValue<int>();
    m_expectedBpp = options[OptionExpectedBpp].GetValue<int>();
    m_expectedChannels = options[OptionExpectedChannels].GetValue<int>();
    m_warnSoftwareQt = options[OptionWarnSoftwareQt].GetValue<int>() == 1;
    m_warnCameraNotFound = options[OptionWarnCameraNotFound].GetValue<int>() == 1;
    m_warnQtNotFound = options[OptionWarnQtNotFound].GetValue<int>() == 1;
    m_softwareKeywords = options[OptionSoftwareKeywords].GetValue<VecString>();
    m_formatWhitelist = options[OptionFormatWhitelist].GetValue<VecString>();
    m_iccModels = options[OptionIccModels].GetValue<VecString>();
    for (wxString const& entry : options[OptionAspectWhitelist].GetValue<VecString>()) {
        double ratio = 0;
        if (entry.ToCDouble(&ratio)) m_aspectWhitelist.push_back(ratio);
    }
}
