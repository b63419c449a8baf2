// SPDX-License-Identifier: Apache-2.0
#include <type_traits>

#include "tests/support/tempdir.h"
#include "tolbase/json.h"
#include "tolbase/parameter.h"

namespace {

VecVecParameter Groups(int number, int selected, const wxString& text) {
    VecParameter general;
    general.push_back(CreateParameterInt("Count", "", number));
    general.push_back(CreateParameterOption("Map Type", "", {"Gray", "Color"}, selected));
    general.push_back(CreateParameterDouble("Limit", "", number + 0.1));
    general.push_back(CreateParameterBool("Flag", "", number % 2 == 1));
    VecParameter more;
    more.push_back(CreateParameterVectorString("Words", "", {text, ""}));
    more.push_back(CreateParameterInt64("Big", "", INT64_C(10000000000) + number));
    more.push_back(CreateParameterFolder("Folder", "", "/x/" + text, {}, ""));
    more.push_back(CreateParameterStringMap("Map", "", {{"k", text}}));
    more.push_back(CreateParameterIntMinMax("Level", "", 5, 0, 10));
    VecVecParameter groups;
    groups.Add("General Settings", general);
    groups.Add("More", more);
    return groups;
}

bool AreEqual(const VecVecParameter& left, const VecVecParameter& right) {
    return left[0] == right[0] && left[1] == right[1];
}

}  // namespace

TEST(VecParameter, SizeZero_IsEmpty) {
    EXPECT_TRUE(VecParameter().empty());
    EXPECT_TRUE(VecParameter(0).empty());
    EXPECT_EQ(3u, VecParameter(3).size());
    EXPECT_THROW(VecParameter(3).at(3), std::out_of_range);
    EXPECT_TRUE((std::is_base_of_v<JsonObject, VecParameter>));
    EXPECT_TRUE((std::is_base_of_v<JsonObject, VecVecParameter>));
}

TEST(VecParameter, Reset_ReturnsEveryDefault) {
    VecParameter list{CreateParameterInt("a", "", 5), CreateParameterOutputString("b", "")};
    list[0].Set(boost::any(9));
    list[1].Set("result");
    list.Reset();
    EXPECT_EQ(5, list[0].GetValue<int>());
    EXPECT_EQ(wxString(), list[1].GetValue<wxString>());
}

TEST(VecParameter, ClearRef_LeavesTheValues) {
    VecParameter list{CreateParameterInt("a", "", 5)};
    list[0].Set(boost::any(9));
    list[0].SetRef(&list[0]);
    list.ClearRef();
    EXPECT_EQ(nullptr, list[0].GetRef());
    EXPECT_EQ(9, list[0].GetValue<int>());
}

TEST(VecParameter, Find_GoesByName) {
    VecParameter list{CreateParameterInt("a", "", 1), CreateParameterInt("b", "", 2)};
    ASSERT_NE(nullptr, list.Find("b"));
    EXPECT_EQ(2, list.Find("b")->GetValue<int>());
    EXPECT_EQ(nullptr, list.Find("c"));
}

TEST(VecParameter, CopyAndMove_KeepTheParameters) {
    VecParameter list{CreateParameterInt("a", "", 1)};
    VecParameter copy(list);
    copy[0].Set(boost::any(2));
    EXPECT_EQ(1, list[0].GetValue<int>());
    const VecParameter moved(std::move(copy));
    EXPECT_EQ(2, moved[0].GetValue<int>());
    EXPECT_TRUE(moved != list);
}

TEST(VecVecParameter, Json_HasAnObjectPerGroup) {
    const wxJSONValue root = Groups(1, 1, "one").WriteToJson();
    EXPECT_EQ(wxString("Color"), root["General Settings"]["Map Type"].AsString());
    EXPECT_EQ(1, root["General Settings"]["Count"].AsInt());
    EXPECT_EQ(wxString("one"), root["More"]["Words"][0u].AsString());
    EXPECT_EQ(wxString("General Settings"), root.GetMemberNames()[0]);
}

TEST(VecVecParameter, TextRoundTrip_KeepsEveryValue) {
    const wxString text = wxString::FromUTF8("drei \xC3\xBC \"/\\");
    const VecVecParameter written = Groups(7, 0, text);
    VecVecParameter read = Groups(2, 1, "one");
    read.ReadFromJson(JsonFromText(JsonToText(written.WriteToJson(), 3)));
    EXPECT_TRUE(AreEqual(written, read));
}

TEST(VecVecParameter, FileRoundTrip_KeepsEveryValue) {
    const support::TempDir dir;
    const VecVecParameter written = Groups(7, 0, "x");
    VecVecParameter read = Groups(2, 1, "one");
    written.Write(dir / "options.json");
    read.Read(dir / "options.json");
    EXPECT_TRUE(AreEqual(written, read));
}

TEST(VecVecParameter, WhatTheFileLacks_KeepsItsValue) {
    VecVecParameter groups = Groups(1, 1, "one");
    groups.ReadFromJson(JsonFromText("{\"General Settings\": {\"Count\": \"12\"}, \"Unknown\": {\"a\": 1}}"));
    EXPECT_EQ(12, groups[0][0].GetValue<int>());
    EXPECT_EQ(1, groups[0][1].GetValue<int>());
    EXPECT_TRUE(groups[1] == Groups(1, 1, "one")[1]);
}

TEST(VecVecParameter, WrongTypes_AreRefusedOneByOne) {
    VecVecParameter groups = Groups(1, 1, "one");
    groups.ReadFromJson(
        JsonFromText("{\"General Settings\": {\"Count\": [1], \"Map Type\": \"None\", \"Limit\": \"x\", \"Flag\": 7},"
                     " \"More\": {\"Words\": \"w\", \"Big\": null, \"Folder\": 5, \"Map\": [], \"Level\": 11}}"));
    EXPECT_TRUE(AreEqual(Groups(1, 1, "one"), groups));
    groups.ReadFromJson(JsonFromText("{\"General Settings\": 5, \"More\": {\"Level\": 10}}"));
    EXPECT_EQ(10, groups[1][4].GetValue<int>());
}

TEST(VecVecParameter, WhatIsNoObject_Throws) {
    VecVecParameter groups = Groups(1, 1, "one");
    EXPECT_THROW(groups.ReadFromJson(wxJSONValue("text")), TolException);
    EXPECT_THROW(groups.ReadFromJson(wxJSONValue(wxJSONTYPE_ARRAY)), TolException);
    EXPECT_THROW(groups[0].ReadFromJson(wxJSONValue()), TolException);
    EXPECT_TRUE(AreEqual(Groups(1, 1, "one"), groups));
}

TEST(VecVecParameter, BrokenFile_ThrowsAndChangesNothing) {
    const support::TempDir dir;
    VecVecParameter groups = Groups(1, 1, "one");
    support::WriteBytes(dir / "o.json", "{\"General Settings\": {\"Count\": 5, ?");
    EXPECT_THROW(groups.Read(dir / "o.json"), TolException);
    EXPECT_THROW(groups.Read(dir / "none.json"), TolException);
    EXPECT_TRUE(AreEqual(Groups(1, 1, "one"), groups));
}

TEST(VecVecParameter, Group_GoesByName) {
    VecVecParameter groups = Groups(1, 1, "one");
    EXPECT_EQ(wxString("Words"), groups.Group("More")[0].Name());
    EXPECT_THROW(groups.Group("None"), TolException);
    EXPECT_TRUE(groups.HasGroup("General Settings"));
    EXPECT_EQ(wxString("More"), groups.GetGroupName(1));
    groups[1] = VecParameter{CreateParameterInt("n", "", 1)};
    EXPECT_EQ(1, groups.WriteToJson()["More"]["n"].AsInt());
}

TEST(VecVecParameter, Reset_GivesEachGroupItsDefaults) {
    VecVecParameter groups = Groups(1, 0, "one");
    ASSERT_TRUE(groups[0][0].Set(boost::any(5)));
    ASSERT_TRUE(groups[1][4].Set(boost::any(9)));
    groups.Reset();
    EXPECT_EQ(1, groups[0][0].GetValue<int>());
    EXPECT_EQ(5, groups[1][4].GetValue<int>());
}

TEST(VecVecParameter, ClearRef_ForgetsTheLinksOfEachGroup) {
    const Parameter source = CreateParameterInt("source", "", 1);
    VecVecParameter groups = Groups(1, 0, "one");
    groups[0][1].SetRef(&source);
    groups[1][0].SetRef(&source);
    groups.ClearRef();
    EXPECT_EQ(nullptr, groups[0][1].GetRef());
    EXPECT_EQ(nullptr, groups[1][0].GetRef());
}

TEST(VecVecParameter, Cleared_HasNeitherGroupsNorNames) {
    VecVecParameter groups = Groups(1, 0, "one");
    groups.clear();
    EXPECT_FALSE(groups.HasGroup("More"));
    const VecVecParameter& none = groups;
    EXPECT_THROW(none.Group("More"), TolException);
    EXPECT_EQ(0, groups.WriteToJson().Size());
}
