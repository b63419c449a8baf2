// SPDX-License-Identifier: Apache-2.0
// Expected digests are those of md5sum, sha1sum and their kin.
#include "tolbase/hash.h"

#include "tests/support/tempdir.h"

namespace {

constexpr const char* Sha384Abc =
    "cb00753f45a35e8bb5a03d699ac65007272c32ab0eded1631a8b605a43ff5bed8086072ba1e7cc2358baeca134c825a7";
constexpr const char* Sha512Abc =
    "ddaf35a193617abacc417349ae20413112e6fa4e89a97ea20a9eeee64b55d39a"
    "2192992a274fc1a836ba3c23a3feebbd454d4423643ce80e2a9ac94fa54ca49f";

}  // namespace

TEST(Hash, File_InEveryAlgorithm) {
    const support::TempDir dir;
    const wxString file = support::WriteBytes(dir / "a", "abc");
    EXPECT_EQ(wxString("900150983cd24fb0d6963f7d28e17f72"), TcvCalcHashFromFile(file, MD5, true));
    EXPECT_EQ(wxString("a9993e364706816aba3e25717850c26c9cd0d89d"), TcvCalcHashFromFile(file, SHA1, true));
    EXPECT_EQ(wxString("ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"),
              TcvCalcHashFromFile(file, SHA256, true));
    EXPECT_EQ(wxString(Sha384Abc), TcvCalcHashFromFile(file, SHA384, true));
    EXPECT_EQ(wxString(Sha512Abc), TcvCalcHashFromFile(file, SHA512, true));
    EXPECT_EQ(wxString("900150983CD24FB0D6963F7D28E17F72"), TcvCalcHashFromFile(file, MD5, false));
}

TEST(Hash, EmptyFile_HasADigest) {
    const support::TempDir dir;
    EXPECT_EQ(wxString("d41d8cd98f00b204e9800998ecf8427e"),
              TcvCalcHashFromFile(support::WriteBytes(dir / "a", ""), MD5, true));
}

TEST(Hash, FileOfSeveralBlocks_InOneReading) {
    const support::TempDir dir;
    const wxString file = support::WriteBytes(dir / "a", std::string(3000000, '\0'));
    const std::vector<wxString> digests = TcvCalcHashesFromFile(file, {SHA256, MD5});
    ASSERT_EQ(2u, digests.size());
    EXPECT_EQ(wxString("35bce4eae54ec8e6cc2868baa8d157914d6ae2858811b4cc0c078c94460fa26f"), digests[0]);
    EXPECT_EQ(wxString("c9fc2d3dd83ab67a129ac10b09c9ebbb"), digests[1]);
    EXPECT_TRUE(TcvCalcHashesFromFile(file, {}).empty());
}

TEST(Hash, WhatCannotBeRead_HasNoDigest) {
    const support::TempDir dir;
    EXPECT_EQ(wxString(), TcvCalcHashFromFile(dir / "none", SHA256, true));
    EXPECT_EQ(wxString(), TcvCalcHashFromFile(dir.Path(), SHA256, true));
    EXPECT_EQ(wxString(), TcvCalcHashFromFile("/dev/zero", SHA256, true));
    EXPECT_EQ(wxString(), TcvCalcHashFromFile("", SHA256, true));
    EXPECT_EQ((std::vector<wxString>(2)), TcvCalcHashesFromFile(dir / "none", {MD5, SHA1}));
}

TEST(Hash, UnknownAlgorithm_HasNoDigest) {
    const support::TempDir dir;
    const wxString file = support::WriteBytes(dir / "a", "abc");
    EXPECT_EQ(wxString(), TcvCalcHashFromFile(file, static_cast<HashAlgorithm>(9), true));
}

TEST(Hash, Memory_AsAFile) {
    EXPECT_EQ(wxString("900150983cd24fb0d6963f7d28e17f72"), TcvCalcHashFromMemory("abc", 3, MD5));
    EXPECT_EQ(wxString("d41d8cd98f00b204e9800998ecf8427e"), TcvCalcHashFromMemory(nullptr, 0, MD5));
}

TEST(Hash, ConcatenatedStrings_AreJoinedInUtf8) {
    EXPECT_EQ(wxString("8ca2ed590cf2ea2404f2e67641bcdf50"), TcvCalcHashOfConcatenatedStrings({"a", "b"}, "-"));
    EXPECT_EQ(wxString("8ca2ed590cf2ea2404f2e67641bcdf50"), TcvCalcHashOfConcatenatedStrings({"a-b"}, "\n"));
    EXPECT_EQ(wxString("f8ff5153a447b6d2d3d74f4787d02b73"),
              TcvCalcHashOfConcatenatedStrings({wxString::FromUTF8("\xC3\xBC"), "x"}, "\n"));
    EXPECT_EQ(wxString("d41d8cd98f00b204e9800998ecf8427e"), TcvCalcHashOfConcatenatedStrings({}, "\n"));
}
