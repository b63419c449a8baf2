// SPDX-License-Identifier: Apache-2.0
// The signatures of social platforms: loading them for a command, and changing the user's own, which stand in
// socialmediasig/usersms.json.
#pragma once

#include <string>
#include <vector>

#include "apps/cli/session.h"
#include "orvcore/smscollection.h"

namespace cli {

// What keeps a file of signatures from being taken in whole; empty for a sound file and for none.
std::string ReasonAgainstSignatures(std::string const& path);

// The compiled signatures and the user's, for a command that classifies. Warns of a user's file that could not be taken
// in whole; what could be read of it is used.
void LoadSocialSignatures(Session& session, Terminal& terminal);

// Why a text can't be a platform's name: empty, no UTF-8, blanks at an end, control characters, or a comma, which
// separates names in results. Empty if it can.
std::string ReasonAgainstPlatform(std::string const& name);

// The user's file while it is being changed; no other such object of any process has it meanwhile. The process must not
// have loaded it before.
class UserSignatures {
public:
    // Makes the folder if need be and reads the file, which may be missing. Throws Failure (ExitOutput) if the folder
    // can't be made or locked, (ExitInput) for a file that can't be taken in whole, unless `force`.
    UserSignatures(std::string path, bool force);
    ~UserSignatures();
    UserSignatures(UserSignatures const&) = delete;
    UserSignatures& operator=(UserSignatures const&) = delete;

    std::vector<SocialMediaSignature> const& List() const { return m_list; }
    // The number, from 1, of the signature with this hash; 0 if there is none.
    size_t NumberOf(wxString const& featureHash) const;
    void Append(SocialMediaSignature const& signature);
    // `index` from 0.
    void Remove(size_t index);
    // In one step; a file that could not be taken in whole is put aside first. Throws Failure (ExitOutput).
    void Save() const;

private:
    std::string m_path;
    int m_lock = -1;
    std::vector<SocialMediaSignature> m_list;
};

// The list as the user's file has it, in UTF-8.
std::string SignaturesText(std::vector<SocialMediaSignature> const& list);

// The valid signatures of a file of that form. Throws Failure (ExitInput) for one that can't be taken in whole.
std::vector<SocialMediaSignature> ReadSignatures(std::string const& path);

}  // namespace cli
