// SPDX-License-Identifier: Apache-2.0
// The user's file of platform signatures: what is taken of it is written and read again as the same bytes.
#include "orvcore/smscollection.h"
#include "tests/fuzz/target.h"
#include "tests/orvcore/smssamples.h"

namespace fuzz {

namespace {

void Empty(SMSCollection& collection) {
    while (!collection.GetSignatures().empty()) {
        // A copy: the list that holds it changes.
        wxString const hash = collection.GetSignatures().front().GetFeatureHash();
        Require(collection.RemoveEntryFromDatabase(hash), "a signature of the list can be removed");
    }
}

void Run(std::string const& bytes) {
    static InputFile const file("user.json");
    SMSCollection collection;
    collection.Read(file.Hold(bytes));
    for (SocialMediaSignature const& signature : collection.GetSignatures()) {
        Require(signature.IsValid(), "bad signatures are dropped");
        Require(signature.GetType() == SMS_User, "signatures of the file are the user's");
    }
    size_t const count = collection.GetSignatures().size();
    collection.ComputeNormalizationParams();
    collection.ComputeMinMaxSmpResolution();
    collection.ClassifyFeature(Feature(800, 600), 3U, 0.5);
    wxString const first = Folder() + "/first.json";
    collection.Write(first);
    Empty(collection);
    collection.Read(first);
    Require(collection.GetSignatures().size() == count, "no signature is lost");
    wxString const second = Folder() + "/second.json";
    collection.Write(second);
    Require(BytesOf(first) == BytesOf(second), "a written file is read as it is");
    Empty(collection);
}

std::vector<std::string> Seeds() {
    SMSCollection collection;
    std::vector<std::string> seeds;
    for (int count : {0, 1, 3}) {
        for (int i = 0; i < count; ++i) {
            wxString const hash = wxString::FromUTF8("hash" + std::to_string(i));
            collection.AddEntryToDatabase(Signature("Platform", Feature(640 * (i + 1), 480), hash, SMS_User));
        }
        wxString const path = Folder() + "/seed.json";
        collection.Write(path);
        Empty(collection);
        seeds.push_back(BytesOf(path));
    }
    seeds.emplace_back(
        R"({"SMSCollection": [{"File": 1, "SocName": [], "FeatVect": [1, 2], "FeatHash": null}, 5, {}]})");
    seeds.emplace_back("\xEF\xBB\xBF{\"SMSCollection\": {\"File\": \"a\"}} // {");
    return seeds;
}

}  // namespace

Target UserSmsTarget() {
    return {"usersms", Run, Seeds};
}

}  // namespace fuzz
