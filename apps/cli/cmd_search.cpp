// SPDX-License-Identifier: Apache-2.0
// orvelle search: what photo services know of a camera, a place, a set of camera data, or a picture.
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <iostream>

#include "apps/cli/arguments.h"
#include "apps/cli/clicontext.h"
#include "apps/cli/command.h"
#include "apps/cli/examination.h"
#include "apps/cli/failure.h"
#include "apps/cli/interrupt.h"
#include "apps/cli/json.h"
#include "apps/cli/plaintable.h"
#include "apps/cli/recordrun.h"
#include "apps/cli/session.h"
#include "apps/cli/tablecommand.h"
#include "apps/cli/text.h"
#include "apps/cli/webkey.h"
#include "apps/cli/work.h"
#include "orvcore/interface.h"
#include "orvcore/webmediasearch.h"
#include "tolbase/exception.h"
#include "tolbase/file.h"
#include "tolbase/limits.h"
#include "tolbase/parser.h"
#include "tolbase/progress.h"
#include "tolimage/mapview.h"

namespace cli {

namespace {

constexpr char const* NetworkError =
    "Network Connection Error: you may be disconnected from the Internet or the server may be down.";
// A transfer ends within its own time limit.
constexpr std::chrono::seconds PatienceForTransfer{10};

// What a search on the worker thread brings back.
struct Found {
    VecVecString table;
    std::string error;
    std::string problem;  // the answer can't be read
    std::vector<std::string> pages;
};

struct Size {
    int width = 0;
    int height = 0;
};

// "4000x3000".
Size ParseSize(std::string const& text) {
    Size size;
    char rest = 0;
    const bool digits = text.find_first_not_of("0123456789x") == std::string::npos && text.size() < 16;
    if (!digits || std::sscanf(text.c_str(), "%6dx%6d%c", &size.width, &size.height, &rest) != 2 || size.width <= 0 ||
        size.height <= 0) {
        throw Failure(ExitUsage, "--size", "takes a width and a height as in 4000x3000, not \"" + text + "\"");
    }
    return size;
}

wxString TextOf(char const* option, std::string const& value) {
    if (!IsUtf8(value)) throw Failure(ExitUsage, option, "not UTF-8");
    return FromUtf8(value);
}

double ParseDegrees(char const* option, std::string const& text, double most) {
    double value = 0;
    if (!FromUtf8(Valid(text)).ToCDouble(&value) || !std::isfinite(value) || std::fabs(value) > most) {
        throw Failure(ExitUsage, option,
                      "takes degrees from -" + ToUtf8(ToString(most)) + " to " + ToUtf8(ToString(most)) + ", not \"" +
                          text + "\"");
    }
    return value;
}

void CheckDate(char const* option, std::string const& text) {
    if (text.empty()) return;
    int year = 0;
    int month = 0;
    int day = 0;
    char rest = 0;
    const bool form = text.size() == 10 && std::sscanf(text.c_str(), "%4d-%2d-%2d%c", &year, &month, &day, &rest) == 3;
    if (form && month >= 1 && month <= 12 && day >= 1 && day <= 31) return;
    throw Failure(ExitUsage, option, "takes a day as in 2024-05-31, not \"" + text + "\"");
}

Parameter Text(char const* name, wxString const& value) {
    return CreateParameterString(name, wxString(), value);
}

void WriteRows(Found const& found, std::string const& title, std::string const& format, Output& output) {
    PlainTable table;
    table.title = title;
    if (!found.table.empty()) {
        for (wxString const& cell : found.table.front()) {
            table.titles.push_back(ToUtf8(cell));
            table.keys.push_back(KeyOfTitle(ToUtf8(cell)));
        }
        for (size_t i = 1; i < found.table.size(); ++i) {
            table.rows.emplace_back();
            for (wxString const& cell : found.table[i]) table.rows.back().push_back(ToUtf8(cell));
        }
    }
    if (format != "json" && format != "jsonl") {
        if (!table.rows.empty()) WritePlainTable(table, format, output);
        return;
    }
    Json all = Json::array();
    for (auto const& row : table.rows) {
        Json object = Json::object();
        for (size_t i = 0; i < row.size(); ++i) object[table.keys.at(i)] = Valid(row[i]);
        if (format == "jsonl") {
            output.Write(JsonText(object, true) + "\n");
        } else {
            all.push_back(object);
        }
    }
    if (format == "json") output.Write(JsonText(all, false) + "\n");
}

// Keeps the trace file of the camera search out of the current folder.
class TraceFolder {
public:
    explicit TraceFolder(bool stay) {
        if (stay) return;
        m_before = std::filesystem::current_path(m_failed);
        std::filesystem::current_path(PathToBytes(GetAppDocumentsPath()), m_failed);
    }
    ~TraceFolder() {
        std::error_code ignored;
        if (!m_before.empty()) std::filesystem::current_path(m_before, ignored);
    }
    TraceFolder(TraceFolder const&) = delete;
    TraceFolder& operator=(TraceFolder const&) = delete;

private:
    std::filesystem::path m_before;
    std::error_code m_failed;
};

class SearchCommand : public Command {
public:
    void Define(CLI::App& app) override {
        app.require_subcommand(1);
        DefineCamera(app);
        DefineGeo(app);
        DefineSightings(app);
        DefineReverse(app);
        app.footer(
            "Only this command and \"orvelle download\" use the network. Addresses and keys stand in the options' "
            "group\n"
            "\"Web Services\"; \"orvelle options set NAME -\" reads a key from standard input, where nobody sees it.");
    }

    ExitCode Run(Environment& environment) override {
        if (!m_key.empty()) {
            throw Failure(ExitUsage, "--key",
                          "other users would see a key in the list of processes; use --key-file, or ORVELLE_API_KEY");
        }
        if (m_camera->parsed()) return SearchCamera(environment);
        if (m_geo->parsed()) return SearchGeo(environment);
        if (m_sightings->parsed()) return SearchSightings(environment);
        return SearchReverse(environment);
    }

private:
    void DefineCommon(CLI::App& app) {
        app.add_option("--timeout", m_timeout, "Seconds that one request may take, retries included")
            ->type_name("SECONDS")
            ->check(CLI::Range(1, 3600));
        AddText(app, "--key-file", m_keyFile, "The service's key is the file's first line; - is standard input")
            ->type_name("FILE");
        AddText(app, "--key", m_key, "Refused: other users see the command line")->group("");
        m_output.Define(app);
    }

    void DefineCamera(CLI::App& app) {
        m_camera = app.add_subcommand("camera", "Photographs of a camera, from Flickr or Google");
        AddText(*m_camera, "QUERY", m_query, "Make and model in one text, such as \"canon eos 5d\"")->type_name("");
        AddText(*m_camera, "--make", m_make, "Camera make");
        AddText(*m_camera, "--model", m_model, "Camera model");
        m_camera->add_option("--days", m_days, "Uploaded in the last so many days; 365 by default")
            ->type_name("DAYS")
            ->check(CLI::Range(1, 36500));
        m_camera->add_option("--results", m_results, "How many photographs; 25 by default")
            ->type_name("NUMBER")
            ->check(CLI::Range(1, 500));
        AddChoice(*m_camera, "--service", m_service, {"flickr", "google"}, "Which service; flickr by default");
        AddText(*m_camera, "--size", m_size, "Only photographs of this size")->type_name("WxH");
        m_camera->add_flag("--any-software", m_anySoftware, "Also photographs that editing software wrote");
        m_camera->add_flag("--any-camera", m_anyCamera, "Also photographs whose metadata name another camera, or none");
        m_camera->add_flag("--trace", m_trace, "Write the trace file flickr_log.txt into the current folder");
        DefineCommon(*m_camera);
    }

    void DefineGeo(CLI::App& app) {
        m_geo = app.add_subcommand("geo", "Photographs taken near a place, from Flickr");
        AddText(*m_geo, "--lat", m_latitude, "Latitude, -90 to 90")->required()->type_name("DEGREES");
        AddText(*m_geo, "--lon", m_longitude, "Longitude, -180 to 180")->required()->type_name("DEGREES");
        m_geo->add_option("--radius", m_radius, "1 to 32 km, or 1 to 20 miles; 5 by default")
            ->type_name("NUMBER")
            ->check(CLI::Range(1, 32));
        AddChoice(*m_geo, "--unit", m_unit, {"km", "mi"}, "Of the radius; km by default");
        AddText(*m_geo, "--from", m_from, "First day of taking")->type_name("YYYY-MM-DD");
        AddText(*m_geo, "--to", m_to, "Last day of taking")->type_name("YYYY-MM-DD");
        DefineCommon(*m_geo);
    }

    void DefineSightings(CLI::App& app) {
        m_sightings = app.add_subcommand("sightings", "Where pictures with given camera data were seen");
        AddText(*m_sightings, "--make", m_make, "Camera make");
        AddText(*m_sightings, "--model", m_model, "Camera model");
        AddText(*m_sightings, "--software", m_software, "Software that wrote the file");
        AddText(*m_sightings, "--qt", m_hash, "Hash of the quantisation tables, 32 hexadecimal digits")
            ->type_name("HASH");
        AddText(*m_sightings, "--size", m_size, "Width and height")->type_name("WxH");
        AddText(*m_sightings, "--like", m_like, "Take make, model, software, hash and size from a file")
            ->type_name("FILE");
        m_sightings->add_option("--results", m_results, "How many; 25 by default")
            ->type_name("NUMBER")
            ->check(CLI::Range(1, 10000));
        DefineCommon(*m_sightings);
        m_sightings->footer("The key is taken from --key-file, or else from the environment's ORVELLE_API_KEY.");
    }

    void DefineReverse(CLI::App& app) {
        m_reverse = app.add_subcommand("reverse", "Where a picture, or one like it, is shown: uploads the picture");
        AddText(*m_reverse, "FILE", m_like, "The picture")->required()->type_name("");
        m_reverse->add_flag("--tineye", m_tinEye, "Ask TinEye");
        m_reverse->add_flag("--google", m_google, "Ask Google");
        AddText(*m_reverse, "--text", m_query, "Google: also search for pictures with this text");
        m_reverse->add_flag("--yes", m_yes, "The picture may be uploaded");
        DefineCommon(*m_reverse);
    }

    void ApplyTimeout() const {
        if (m_timeout > 0) SetTolLimit(TolLimit::WebSeconds, static_cast<uint64_t>(m_timeout));
    }

    // The option's key for this run; without one nothing is sent.
    void RequireKey(Session& session, std::string const& option) const {
        const std::string key = FindKey(session, m_keyFile, false, option);
        if (key.empty()) {
            throw Failure(ExitUsage, option,
                          "is not set: put it there with \"orvelle options set\", or use --key-file");
        }
        UseKey(session, option, key);
    }

    // False if the person has interrupted.
    static bool Search(Session& session, Terminal& terminal, std::string const& log,
                       std::function<void(Found&)> const& search, Found& found) {
        session.SetPatience(PatienceForTransfer);
        session.SetWaiting([&terminal] { terminal.Status(ToUtf8(tcvGetProgress().text)); });
        const auto result = std::make_shared<Found>();
        const auto work = [result, search] {
            try {
                search(*result);
            } catch (TolException const& error) {
                result->error = ToUtf8(error.GetMessage());
            }
        };
        const bool done = RunWork(session, log, work);
        session.SetWaiting({});
        terminal.ClearProgress();
        if (done) found = *result;
        return done;
    }

    ExitCode Tell(Environment& environment, Output& output, Found const& found, std::string const& title,
                  std::string const& none) const {
        WriteRows(found, title, m_output.Format(), output);
        output.Commit();
        if (!found.error.empty()) environment.terminal.Error("", found.error);
        if (!found.problem.empty()) environment.terminal.Error("", found.problem);
        if (!found.error.empty() || !found.problem.empty()) return ExitNetwork;
        if (found.table.size() < 2 && !none.empty()) environment.terminal.Error("", none);
        return ExitDone;
    }

    // Nothing but the search runs in the trace's folder: the output's path may be relative.
    static bool SearchIn(TraceFolder const& /*folder*/, Session& session, Terminal& terminal,
                         std::function<void(Found&)> const& search, Found& found) {
        return Search(session, terminal, "Search for a camera", search, found);
    }

    ExitCode SearchCamera(Environment& environment) {
        const bool named = !m_make.empty() || !m_model.empty();
        if (named == !m_query.empty())
            throw Failure(ExitUsage, "QUERY", "or --make and --model: one of both is needed");
        if (!m_size.empty()) ParseSize(m_size);
        const wxString query = TextOf("QUERY", m_query).Lower();
        const wxString make = TextOf("--make", m_make);
        const wxString model = TextOf("--model", m_model);
        Output output(m_output.path, m_output.force);
        Session session(environment);
        ApplyTimeout();
        const bool google = m_service == "google";
        RequireKey(session, google ? "Google API Key" : "Flickr API Key");
        // The option's number tells whether its text counts.
        const std::vector<wxString> sizes = {FromUtf8(m_size.empty() ? "0x0" : m_size), "Any"};
        const Parameter size = CreateParameterOption("Size", wxString(), sizes, m_size.empty() ? 1 : 0);
        const int days = m_days;
        const int results = m_results;
        const int software = m_anySoftware ? 1 : 0;
        const int camera = m_anyCamera ? 1 : 0;
        const auto search = [=](Found& found) {
            const VecString names = query.empty() ? VecString{make, model} : GetValidCameraMakeModel(query);
            VecParameter parameters = {Text("Make", names.at(0)),
                                       Text("Model", names.at(1)),
                                       CreateParameterInt("Days", wxString(), days),
                                       CreateParameterInt("Results", wxString(), results),
                                       CreateParameterInt("Service", wxString(), google ? 1 : 0),
                                       size,
                                       CreateParameterInt("Software", wxString(), software),
                                       CreateParameterInt("Camera", wxString(), camera)};
            wxString error;
            found.table = SearchImageFromWeb(parameters, 0, error);
            found.error = ToUtf8(error);
        };
        Found found;
        if (!SearchIn(TraceFolder(m_trace), session, environment.terminal, search, found)) return InterruptionCode();
        return Tell(environment, output, found, "Photographs", "no photographs");
    }

    ExitCode SearchGeo(Environment& environment) {
        ParseDegrees("--lat", m_latitude, 90);
        ParseDegrees("--lon", m_longitude, 180);
        CheckDate("--from", m_from);
        CheckDate("--to", m_to);
        if (m_unit == "mi" && m_radius > 20) throw Failure(ExitUsage, "--radius", "takes 1 to 20 miles");
        Output output(m_output.path, m_output.force);
        Session session(environment);
        ApplyTimeout();
        RequireKey(session, "Flickr API Key");
        VecParameter parameters = {Text("Latitude", FromUtf8(m_latitude)),
                                   Text("Longitude", FromUtf8(m_longitude)),
                                   Text("From", FromUtf8(m_from)),
                                   Text("To", FromUtf8(m_to)),
                                   CreateParameterInt("Radius", wxString(), m_radius),
                                   CreateParameterInt("Unit", wxString(), m_unit == "mi" ? 1 : 0)};
        const auto search = [parameters](Found& found) {
            VecParameter own = parameters;
            wxString error;
            found.table = SearchGeoTagImage(own, 2, error);
            found.error = ToUtf8(error);
        };
        Found found;
        if (!Search(session, environment.terminal, "Search for a place", search, found)) return InterruptionCode();
        return Tell(environment, output, found, "Photographs", "no photographs");
    }

    // Options outweigh the file.
    void TakeFromFile(Session& session) {
        Record unused;
        const auto taken = std::make_shared<std::array<std::string, 5>>();
        const auto take = [taken](OrvFileId slot, Record&) {
            ImageDetailsExifTool const& details = GetContext()->GetImageDetails(slot);
            const Image picture = GetContext()->GetImage(slot);
            (*taken)[0] = ToUtf8(details.Make);
            (*taken)[1] = ToUtf8(details.Model);
            (*taken)[2] = ToUtf8(details.Software);
            (*taken)[3] = ToUtf8(GetContext()->GetImageJpegInfo(slot).QtHash);
            if (picture.IsOk()) {
                (*taken)[4] = std::to_string(picture.Width()) + "x" + std::to_string(picture.Height());
            }
        };
        if (!Examine(session, m_like, Evidence, take, unused)) throw Failure(ExitInterrupted, "", "interrupted");
        std::string* const fields[] = {&m_make, &m_model, &m_software, &m_hash, &m_size};
        for (size_t i = 0; i < taken->size(); ++i) {
            if (fields[i]->empty()) *fields[i] = (*taken)[i];
        }
    }

    ExitCode SearchSightings(Environment& environment) {
        if (!m_size.empty()) ParseSize(m_size);
        for (std::string const* text : {&m_make, &m_model, &m_software, &m_hash}) TextOf("--make", *text);
        Output output(m_output.path, m_output.force);
        Session session(environment);
        session.KeepNoCopies();
        ApplyTimeout();
        const std::string key = FindKey(session, m_keyFile, true, "");
        if (key.empty()) {
            throw Failure(ExitUsage, "--key-file",
                          "is missing: the service's key is taken from such a file, or from ORVELLE_API_KEY");
        }
        if (ToUtf8(OptionText(session, "Sightings Endpoint")).empty()) {
            throw Failure(ExitUsage, "Sightings Endpoint",
                          "is not set: the service tells its address; \"orvelle options set\" puts it there");
        }
        if (!m_like.empty()) TakeFromFile(session);
        VecParameter parameters = {
            Text("Key", FromUtf8(key)),          Text("Make", FromUtf8(m_make)),
            Text("Model", FromUtf8(m_model)),    Text("Software", FromUtf8(m_software)),
            Text("QT", FromUtf8(m_hash)),        CreateParameterInt("Results", wxString(), m_results),
            Text("Resolution", FromUtf8(m_size))};
        const auto search = [parameters](Found& found) {
            VecParameter own = parameters;
            wxString error;
            found.table = SearchImageOnCameraForensics(own, 1, error);
            found.problem = ToUtf8(GetSightingsProblem());
        };
        Found found;
        if (!Search(session, environment.terminal, "Search for sightings", search, found)) return InterruptionCode();
        return Tell(environment, output, found, "Sightings", "no sightings");
    }

    static wxString OptionText(Session& session, char const* name) {
        VecVecParameter options = session.Interface().GetProgramOptions();
        for (Parameter const& option : options.Group("Web Services")) {
            if (option.Name() == name) return option.GetValue<wxString>();
        }
        return {};
    }

    void AskForUpload(Environment& environment) const {
        const std::string services = m_tinEye && m_google ? "TinEye and Google" : m_tinEye ? "TinEye" : "Google";
        environment.terminal.Error(m_like, "the image itself is uploaded to " + services);
        if (m_yes) return;
        if (isatty(STDIN_FILENO) == 1) {
            environment.terminal.Error("", "upload it? Type \"yes\":");
            std::string answer;
            if (std::getline(std::cin, answer) && (answer == "yes" || answer == "y")) return;
            throw Failure(ExitUsage, m_like, "not uploaded");
        }
        throw Failure(ExitUsage, "--yes", "is needed: the image leaves this machine");
    }

    ExitCode SearchReverse(Environment& environment) {
        if (!m_tinEye && !m_google) throw Failure(ExitUsage, "--tineye", "or --google: which service is asked?");
        const wxString text = TextOf("--text", m_query);
        Output output(m_output.path, m_output.force);
        Session session(environment);
        ApplyTimeout();
        if (m_tinEye) RequireKey(session, "TinEye API Key");
        if (m_google) RequireKey(session, "Google API Key");
        AskForUpload(environment);
        Record unused;
        if (!Examine(
                session, m_like, Evidence, [](OrvFileId, Record&) {}, unused))
            return InterruptionCode();
        const auto search = [text, tinEye = m_tinEye, google = m_google](Found& found) {
            const wxString evidence = GetContext()->GetFilename(Evidence);
            const wxString stem = GetContext()->GetOutputBasePath(Evidence) + "-SearchImagesOnTheWeb-";
            if (tinEye) {
                found.table = MapView::ShowTinEyeFileSearch(evidence, stem);
                if (found.table.empty())
                    found.error = NetworkError;
                else
                    found.pages.push_back(PathToBytes(stem + "tineye.html"));
            }
            if (google) {
                if (MapView::ShowGoogleFileSearch(evidence, stem, text) != 0)
                    found.error = NetworkError;
                else
                    found.pages.push_back(PathToBytes(stem + "google.html"));
            }
            found.problem = "";
        };
        Found found;
        if (!Search(session, environment.terminal, "Search for a picture", search, found)) return InterruptionCode();
        // Google's answer is a page and nothing else.
        const ExitCode code = Tell(environment, output, found, "Matches", m_tinEye ? "no matches" : "");
        for (std::string const& page : found.pages) environment.terminal.Step("the answer as a page: " + page);
        return code;
    }

    CLI::App* m_camera = nullptr;
    CLI::App* m_geo = nullptr;
    CLI::App* m_sightings = nullptr;
    CLI::App* m_reverse = nullptr;
    OutputOptions m_output;
    std::string m_query;
    std::string m_make;
    std::string m_model;
    std::string m_software;
    std::string m_hash;
    std::string m_size;
    std::string m_like;
    std::string m_service;
    std::string m_latitude;
    std::string m_longitude;
    std::string m_from;
    std::string m_to;
    std::string m_unit;
    std::string m_keyFile;
    std::string m_key;
    int m_days = 365;
    int m_results = 25;
    int m_radius = 5;
    int m_timeout = 0;
    bool m_anySoftware = false;
    bool m_anyCamera = false;
    bool m_trace = false;
    bool m_tinEye = false;
    bool m_google = false;
    bool m_yes = false;
};

}  // namespace

std::unique_ptr<Command> MakeSearchCommand() {
    return std::make_unique<SearchCommand>();
}

}  // namespace cli
