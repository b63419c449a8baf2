// SPDX-License-Identifier: Apache-2.0
// The program options: making them, applying them, their file; the keywords.
#include <wx/filename.h>
#include <wx/tokenzr.h>

#include <algorithm>

#include "orvcore/context.h"
#include "orvcore/filter.h"
#include "orvcore/imageinfotable.h"
#include "orvcore/optionnumbers.h"
#include "orvcore/translate.h"
#include "tolbase/file.h"
#include "tolbase/json.h"
#include "tolbase/limits.h"
#include "tolbase/text.h"
#include "tolbase/translation.h"
#include "tolimage/subimages.h"
#include "tolimage/webservices.h"

namespace {

char const* const kGeneralGroup = "General Settings";
char const* const kWebGroup = "Web Services";
char const* const kLimitsGroup = "Limits";

Parameter MakeChoice(char const* name, char const* first, char const* second, int selected,
                     char const* description = "") {
    return CreateParameterOption(name, description, {first, second}, selected);
}

// What a settings file says before there are options to read it into; empty texts for a file that can't be read.
struct StartSettings {
    wxString language;
    wxString hiDpi;
};

StartSettings ReadStartSettings(wxString const& path) {
    StartSettings settings;
    try {
        wxJSONValue root = JsonFromFile(path);
        settings.language = root[kGeneralGroup]["Language"].AsString();
        settings.hiDpi = root[kGeneralGroup]["HiDPI Mode"].AsString();
    } catch (...) {
        return StartSettings();
    }
    return settings;
}

// One entry for each entry of the list that fits a configuration. Where several configurations are alike, an entry fits
// all of them: written once for each, the list would be squared with each saving.
VecString UntranslatedConfigurations(OrvContext const& context, VecString const& list) {
    struct Group {
        VecString entries;
        size_t taken = 0;
    };
    std::map<wxString, Group> groups;
    VecString result;
    for (wxString const& entry : list) {
        bool const disabled = entry.StartsWith("!");
        wxString const plain = entry.Mid(disabled ? 1 : 0);
        auto const [found, isNew] = groups.try_emplace(plain);
        Group& group = found->second;
        if (isNew) group.entries = context.ConvertToUntranslatedConfigurations({plain});
        if (group.entries.empty()) continue;
        size_t const index = std::min(group.taken++, group.entries.size() - 1);
        result.push_back((disabled ? "!" : "") + group.entries[index]);
    }
    return result;
}

// An address that is left empty is the documented one.
void ApplyWebServices(VecVecParameter const& options) {
    TolWebServices services;
    if (!options.HasGroup(kWebGroup)) return;
    VecParameter const& group = options.Group(kWebGroup);
    auto const take = [&group](char const* name, wxString& text) {
        Parameter const* option = group.Find(name);
        wxString const value = option != nullptr ? Trim(option->GetValue<wxString>()) : wxString();
        if (!value.empty()) text = value;
    };
    take("Flickr Endpoint", services.flickrEndpoint);
    take("Flickr API Key", services.flickrKey);
    take("Google Endpoint", services.googleEndpoint);
    take("Google API Key", services.googleKey);
    take("TinEye Endpoint", services.tinEyeEndpoint);
    take("TinEye API Key", services.tinEyeKey);
    take("Sightings Endpoint", services.sightingsEndpoint);
    SetTolWebServices(services);
}

}  // namespace

void OrvContext::InitProgramOptions(AppVersion const& version) {
    m_appVersion = version;
    StartSettings const settings = ReadStartSettings(m_programOptionsPath);
    if (settings.hiDpi == "Enabled") TolSetProcessDpiAware();
    m_translationHelper.reset();
    m_translationHelper = std::make_unique<TranslationHelper>(version.GetLangDir(), settings.language, "orvelle");

    // The engine reads its own groups by their places, so groups that are here already go behind them.
    VecVecParameter const earlier = m_programOptions;
    m_programOptions = VecVecParameter();
    AddProgramOptionsGroup(kGeneralGroup, MakeGeneralOptions(settings.hiDpi));
    ImageInfoTable::RegisterProgramOptions();
    if (!m_programOptions.HasGroup("File Format") && earlier.HasGroup("File Format")) {
        AddProgramOptionsGroup("File Format", earlier.Group("File Format"));
    }
    AddWebServiceOptions();
    AddLimitOptions();
    for (size_t i = 0; i < earlier.size(); ++i) {
        wxString const& name = earlier.GetGroupName(i);
        if (!m_programOptions.HasGroup(name)) AddProgramOptionsGroup(name, earlier[i]);
    }
}

VecParameter OrvContext::MakeGeneralOptions(wxString const& hiDpi) const {
    VecString const languages = m_translationHelper->GetAvailableLanguages();
    std::uint64_t const language = m_translationHelper->GetCurrentLanguageId() + 1;
    wxString const cacheFolder = GetUserDesktopPath() + wxFILE_SEP_PATH + "cache";
    VecParameter options;
    options.push_back(CreateParameterOption("Language", "", languages, static_cast<int>(language)));
    options.push_back(MakeChoice("HiDPI Mode", "Disabled", "Enabled", hiDpi == "Enabled" ? 1 : 0,
                                 "Interpolates user interface elements to preserve the layout on high resolution "
                                 "screens"));
    options.push_back(MakeChoice("Log", "Enabled", "Disabled", 0));
    options.push_back(MakeChoice("Processing Cache", "Enabled", "Disabled", 0));
    options.push_back(CreateParameterOption(
        "Cache Location", "", {"Program Documents Folder", "Image Local Folder", "Custom Cache Folder"}, 0));
    options.push_back(CreateParameterFolder("Custom Cache Folder", "", cacheFolder, VecString(), wxString()));
    options.push_back(MakeChoice("Image Cache Format", "JPG", "PNG", 1));
    options.push_back(CreateParameterImageQuality("JPG Save Quality", "", 90));
    options.push_back(CreateParameterVectorString("Default Configurations", "", GetConfigurationsFromFilters(true)));
    options.push_back(MakeChoice("Search Subfolders for Batch File Format", "No", "Yes", 0));
    options.push_back(MakeChoice("Hide Best Matching Parameters for Negative Compatibility", "No", "Yes", 1));
    options.push_back(CreateParameterDouble("Threshold for PRNU Camera Identification",
                                            "The value above which a positive compatibility is decided by the PRNU "
                                            "Camera Identification threshold",
                                            45.0));
    options.push_back(CreateParameterInt(
        "Report Max Image Width", "The maximum width in pixels of images in report (0 = original image width)", 600));
    options.push_back(CreateParameterInt(
        "Report Min Image Width", "The minimum width in pixels of images in report (0 = original image width)", 0));
    return options;
}

// Addresses are the services' public ones. The sightings service gives its address together with a key, so there is
// none to begin with.
void OrvContext::AddWebServiceOptions() {
    TolWebServices const services;
    VecParameter options;
    options.push_back(
        CreateParameterString("Flickr Endpoint", "The address of Flickr's REST methods", services.flickrEndpoint));
    options.push_back(CreateParameterString("Flickr API Key", "Your own key for Flickr", services.flickrKey));
    options.push_back(CreateParameterString("Google Endpoint",
                                            "The address of Google's Custom Search JSON API; your search engine goes "
                                            "behind it as ?cx=ENGINE",
                                            services.googleEndpoint));
    options.push_back(CreateParameterString("Google API Key", "Your own key for Google", services.googleKey));
    options.push_back(
        CreateParameterString("TinEye Endpoint", "The address of TinEye's commercial API", services.tinEyeEndpoint));
    options.push_back(CreateParameterString("TinEye API Key", "Your own key for TinEye", services.tinEyeKey));
    options.push_back(CreateParameterString("Sightings Endpoint",
                                            "The address of the sightings service, which comes with its key",
                                            services.sightingsEndpoint));
    AddProgramOptionsGroup(kWebGroup, options);
}

// One number for each limit, under the limit's own name; 0 stands for the default.
void OrvContext::AddLimitOptions() {
    VecParameter options;
    for (int i = 0; i < static_cast<int>(TolLimit::Count); ++i) {
        TolLimitInfo const& info = GetTolLimitInfo(static_cast<TolLimit>(i));
        wxString const description =
            wxString::FromUTF8(info.description) + " (0 = " + ToString<std::uint64_t>(info.defaultValue) + ")";
        options.push_back(CreateParameterInt64(info.name, description, 0));
    }
    AddProgramOptionsGroup(kLimitsGroup, options);
}

void OrvContext::SetProgramOptions(VecVecParameter const& options) {
    m_programOptions = options;
    if (!options.empty() && options[0].size() >= OrvOptionCount) {
        ApplyConfigurations();
        ApplyVariables();
    }
    ApplyLimits();
    ApplyWebServices(m_programOptions);
    UpdateBasePath(Evidence);
    UpdateBasePath(Reference);
}

void OrvContext::ApplyVariables() {
    VecParameter const& general = m_programOptions[0];
    m_workerThread.EnableLog(general[OrvOptionLog].GetValue<int>() == 0);
    m_cacheEnabled = general[OrvOptionCache].GetValue<int>() == 0;
    m_cacheLocation = general[OrvOptionCacheLocation].GetValue<int>();
    m_customCacheFolder = general[OrvOptionCacheFolder].GetValue<wxString>();
    m_cacheFormat = general[OrvOptionCacheFormat].ToReport().Lower();
    m_showBestMatchingParameters = general[OrvOptionHideBestMatching].GetValue<int>() == 0;
    m_prnuThreshold = general[OrvOptionPrnuThreshold].GetValue<double>();
    m_jpgQuality = general[OrvOptionJpgQuality].GetValue<int>();
    // Pictures taken out of a file go where its other results go.
    TolSetDumpFolder(m_cacheLocation == 2 ? m_customCacheFolder : wxString());
}

// A limit that stands at 0 is left alone unless an option has set it before: the program may have set it by other
// means.
void OrvContext::ApplyLimits() {
    if (!m_programOptions.HasGroup(kLimitsGroup)) return;
    for (Parameter const& option : m_programOptions.Group(kLimitsGroup)) {
        TolLimit limit = TolLimit::Count;
        if (!FindTolLimit(option.Name(), limit)) continue;
        auto const value = std::max<std::int64_t>(option.GetValue<std::int64_t>(), 0);
        std::int64_t& applied = m_appliedLimits[option.Name()];
        if (value == applied) continue;
        SetTolLimit(limit, static_cast<std::uint64_t>(value));
        applied = value;
    }
}

VecVecParameter OrvContext::GetProgramOptions() const {
    return m_programOptions;
}

VecParameter OrvContext::GetOptionGroup(wxString const& name) const {
    return m_programOptions.Group(name);
}

void OrvContext::AddProgramOptionsGroup(wxString const& name, VecParameter const& group) {
    m_programOptions.Add(name, group);
}

void OrvContext::LoadProgramOptions(wxString const& path) {
    try {
        if (wxFileExists(path)) {
            // A file that can't be parsed counts as none; one that can't be understood leaves everything as it is.
            wxJSONValue root;
            bool parsed = true;
            try {
                root = JsonFromFile(path);
            } catch (...) {
                parsed = false;
            }
            if (parsed) m_programOptions.ReadFromJson(root);
        }
        // A copy: the argument must not be the member that it is assigned to.
        SetProgramOptions(VecVecParameter(m_programOptions));
    } catch (...) {
        return;
    }
}

void OrvContext::SaveProgramOptions(wxString const& path) const {
    try {
        CreateDirIfNotExists(wxPathOnly(path));
        VecVecParameter options = m_programOptions;
        if (!options.empty() && options[0].size() >= OrvOptionCount) {
            Parameter& option = options[0][OrvOptionConfigurations];
            option.Set(boost::any(UntranslatedConfigurations(*this, option.GetValue<VecString>())));
        }
        options.Write(path);
    } catch (...) {
        wxASSERT(false);
    }
}

void OrvContext::LoadKeywords(wxString const& path) {
    if (!wxFileExists(path)) TolMessageBox(OrvTranslate("Keywords file not found."), OrvTranslate("Warning"));
    wxString const text = ReadFile(path);
    m_softwareKeywords.clear();
    wxStringTokenizer tokenizer(text, "\n");
    while (tokenizer.HasMoreTokens()) {
        wxString const keyword = Trim(tokenizer.GetNextToken());
        if (!keyword.empty()) m_softwareKeywords.push_back(keyword);
    }
}
