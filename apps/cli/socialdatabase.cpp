// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/socialdatabase.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <wx/jsonreader.h>
#include <wx/jsonwriter.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>

#include "apps/cli/clicontext.h"
#include "apps/cli/failure.h"
#include "apps/cli/text.h"
#include "tolbase/file.h"
#include "tolbase/limits.h"

namespace cli {

namespace {

constexpr char const* Key = "SMSCollection";

// What a file of signatures holds, read as the engine reads it.
struct Contents {
    std::string problem;
    std::vector<SocialMediaSignature> valid;
};

std::string ReadLimited(std::string const& path, std::string& bytes) {
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0) {
        return errno == ENOENT ? "no such file" : "can't be read: " + std::string(std::strerror(errno));
    }
    if (!S_ISREG(status.st_mode)) return "not a regular file";
    const uint64_t limit = GetTolLimit(TolLimit::UserDatabaseBytes);
    if (static_cast<uint64_t>(status.st_size) > limit) {
        return "larger than the limit \"user-database-bytes\" (" + std::to_string(status.st_size) + " > " +
               std::to_string(limit) + ")";
    }
    if (access(path.c_str(), R_OK) != 0) return "can't be read: " + std::string(std::strerror(errno));
    if (!ReadFileBytes(PathFromBytes(path), bytes, static_cast<size_t>(limit))) return "can't be read";
    return "";
}

Contents Take(wxJSONValue const& value) {
    Contents contents;
    if (value.IsNull()) return contents;
    if (!value.IsObject() || !value.HasMember(Key) || !value.ItemAt(Key).IsArray()) {
        contents.problem = "not a file of signatures: it has no list \"SMSCollection\"";
        return contents;
    }
    size_t refused = 0;
    for (wxJSONValue const& element : value.ItemAt(Key).Elements()) {
        SocialMediaSignature signature;
        signature.ReadFromJson(element);
        signature.SetType(SMS_User);
        if (signature.IsValid()) {
            contents.valid.push_back(std::move(signature));
        } else {
            ++refused;
        }
    }
    if (refused > 0) {
        contents.problem = std::to_string(refused) + " of " + std::to_string(contents.valid.size() + refused) +
                           " entries are no signatures";
    }
    return contents;
}

Contents Look(std::string const& path) {
    std::string bytes;
    Contents contents;
    contents.problem = ReadLimited(path, bytes);
    if (!contents.problem.empty() || bytes.empty()) return contents;
    if (bytes.compare(0, 3, "\xEF\xBB\xBF") == 0) bytes.erase(0, 3);
    wxJSONReader reader;
    reader.SetLimits(static_cast<int>(std::min<uint64_t>(GetTolLimit(TolLimit::JsonDepth), wxJSON_HARD_DEPTH)),
                     bytes.size());
    wxJSONValue value;
    const int errors = reader.ParseUtf8(bytes, &value);
    contents = Take(value);
    if (errors > 0) contents.problem = "broken: " + ToUtf8(reader.GetErrors()[0]);
    return contents;
}

// The engine's saving, with a list of its own.
class Saved : public SMSCollection {
public:
    explicit Saved(std::vector<SocialMediaSignature> const& list) : m_list(list) {}

    wxJSONValue WriteToJson() const override {
        wxJSONValue value(wxJSONTYPE_NULL);
        for (SocialMediaSignature const& signature : m_list) value[Key].Append(signature.WriteToJson());
        return value;
    }

private:
    std::vector<SocialMediaSignature> const& m_list;
};

}  // namespace

std::string ReasonAgainstSignatures(std::string const& path) {
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0 && errno == ENOENT) return "";
    return Look(path).problem;
}

void LoadSocialSignatures(Session& session, Terminal& terminal) {
    const wxString path = session.Context().GetUserSMSDatabaseFilename();
    const std::string reason = ReasonAgainstSignatures(PathToBytes(path));
    if (!reason.empty()) {
        terminal.Warning(PathToBytes(path), "your own signatures are used as far as they could be read: " + reason);
    }
    SMSCollection collection;
    collection.LoadInternalSignatures();
    collection.LoadUserSignatures(path);
}

std::string ReasonAgainstPlatform(std::string const& name) {
    if (name.empty()) return "is empty";
    if (!IsUtf8(name)) return "is not UTF-8";
    if (Printable(name) != name) return "has a line break, a control character or a mark that turns text";
    if (name.front() == ' ' || name.back() == ' ') return "begins or ends with a blank";
    if (name.find(',') != std::string::npos) return "has a comma, which separates names in results";
    return "";
}

UserSignatures::UserSignatures(std::string path, bool force) : m_path(std::move(path)) {
    const std::string folder = std::filesystem::path(m_path).parent_path().string();
    const bool made = CreateDirIfNotExists(PathFromBytes(folder));
    m_lock = made ? open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC) : -1;
    if (m_lock < 0 || flock(m_lock, LOCK_EX) != 0) throw Failure(ExitOutput, m_path, "can't be written");
    const std::string reason = ReasonAgainstSignatures(m_path);
    if (!reason.empty() && !force) throw Failure(ExitInput, m_path, reason + "; nothing was changed");
    SMSCollection collection;
    collection.LoadUserSignatures(PathFromBytes(m_path));
    m_list = collection.GetSignatures();
}

UserSignatures::~UserSignatures() {
    if (m_lock >= 0) close(m_lock);
}

size_t UserSignatures::NumberOf(wxString const& featureHash) const {
    const auto found = std::find_if(m_list.begin(), m_list.end(), [&](SocialMediaSignature const& one) {
        return one.GetFeatureHash() == featureHash;
    });
    return found == m_list.end() ? 0 : static_cast<size_t>(found - m_list.begin()) + 1;
}

void UserSignatures::Append(SocialMediaSignature const& signature) {
    m_list.push_back(signature);
}

void UserSignatures::Remove(size_t index) {
    m_list.erase(m_list.begin() + static_cast<std::ptrdiff_t>(index));
}

void UserSignatures::Save() const {
    Saved(m_list).SaveUserSignatures(PathFromBytes(m_path));
    // The engine tells nothing of a failure.
    std::string bytes;
    if (!ReadFileBytes(PathFromBytes(m_path), bytes) || bytes != SignaturesText(m_list)) {
        throw Failure(ExitOutput, m_path, "can't be written");
    }
}

std::string SignaturesText(std::vector<SocialMediaSignature> const& list) {
    return wxJSONWriter(wxJSONWRITER_STYLED, 0, 3).WriteUtf8(Saved(list).WriteToJson());
}

std::vector<SocialMediaSignature> ReadSignatures(std::string const& path) {
    Contents contents = Look(path);
    if (!contents.problem.empty()) throw Failure(ExitInput, path, contents.problem);
    return std::move(contents.valid);
}

}  // namespace cli
