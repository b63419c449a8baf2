// SPDX-License-Identifier: Apache-2.0
// The lists of known quantisation tables: the user's file and the compiled records.
#include "tests/support/engine.h"

namespace {

char const* const kCamera =
    "SIG 1 ,\"Acme\",\"X1\",\"FINE\",\"0123456789ABCDEF0123456789ABCDEF\",\"FEDCBA9876543210FEDCBA9876543210\","
    "\"2x1\",\"\",\"**\"\n";
char const* const kSoftware =
    "SIG 2 ,\"Paint\",\"\",\"\",\"00000000000000000000000000000001\",\"00000000000000000000000000000002\","
    "\"\",\"\",\"Paint 7\"\n";

class QtDatabase : public support::Engine {
protected:
    std::size_t LoadBytes(std::string const& bytes) {
        support::WriteBytes(context->GetUserQtDatabaseFilename(), bytes);
        context->LoadUserQtDatabase();
        return context->GetListOfSignaturesInUserQtDatabase().size();
    }
    VecVecString const& Cameras() { return context->GetListOfEditorsInUserQtDatabase(0); }
    VecVecString const& Software() { return context->GetListOfEditorsInUserQtDatabase(1); }
    int Parse(wxString text, JpegSignature& out) { return context->ParseQtDatabaseString(text, out); }
};

}  // namespace

TEST_F(QtDatabase, MissingFile_GivesNothing) {
    context->LoadUserQtDatabase();
    EXPECT_TRUE(context->GetListOfSignaturesInUserQtDatabase().empty());
}

TEST_F(QtDatabase, CameraLine_FillsRecordAndRow) {
    ASSERT_EQ(1u, LoadBytes(kCamera));
    JpegSignature const& record = context->GetListOfSignaturesInUserQtDatabase()[0];
    EXPECT_EQ("1", record.editorClass);
    EXPECT_EQ("2x1", record.subsampling);
    VecString const row = {
        "Acme", "X1", "FINE", "**", "0123456789ABCDEF0123456789ABCDEF", "FEDCBA9876543210FEDCBA9876543210"};
    EXPECT_EQ(VecVecString{row}, Cameras());
    EXPECT_TRUE(Software().empty());
}

TEST_F(QtDatabase, SoftwareLine_FillsASoftwareRow) {
    LoadBytes(kSoftware);
    VecString const row = {
        "Paint", "", "", "Paint 7", "00000000000000000000000000000001", "00000000000000000000000000000002"};
    EXPECT_EQ(VecVecString{row}, Software());
    EXPECT_TRUE(Cameras().empty());
}

TEST_F(QtDatabase, TwoCharacters_GiveNothing) {
    EXPECT_EQ(0u, LoadBytes("1,"));
    EXPECT_EQ(0u, LoadBytes("\r\n"));
    EXPECT_EQ(0u, LoadBytes(""));
}

TEST_F(QtDatabase, SlashInTheMake_CutsTheLineThereAndKeepsTheRecord) {
    ASSERT_EQ(1u, LoadBytes("SIG 1 ,\"Ac/me\",\"X1\",\"\",\"A\",\"B\",\"\",\"\",\"s\"\n"));
    EXPECT_EQ((VecVecString{{"Ac", "", "", "", "", ""}}), Cameras());
}

TEST_F(QtDatabase, LineThatBeginsWithTheNumber_IsSkipped) {
    EXPECT_EQ(0u, LoadBytes("1 ,\"Acme\",\"X1\"\n"));
}

TEST_F(QtDatabase, NumberWithoutABlankBehindIt_IsSkipped) {
    EXPECT_EQ(0u, LoadBytes("SIG 1,\"Acme\",\"X1\"\n"));
}

TEST_F(QtDatabase, LineWithoutAComma_IsSkipped) {
    EXPECT_EQ(0u, LoadBytes("SIG 1 \n"));
}

TEST_F(QtDatabase, OtherClassesHeadingsAndBlankLines_AreSkipped) {
    EXPECT_EQ(1u, LoadBytes(std::string("NAME class ,make,model\n\n   \nSIG 3 ,\"a\"\nSIG 0 ,\"a\"\n") + kCamera));
}

TEST_F(QtDatabase, WindowsLineEnds_DoNoHarm) {
    std::string line = kSoftware;
    line.insert(line.size() - 1, "\r");
    ASSERT_EQ(2u, LoadBytes(line + line));
    EXPECT_EQ("Paint 7", Software()[1][3]);
}

TEST_F(QtDatabase, Utf16WithItsMark_IsRead) {
    std::string bytes = "\xFF\xFE";
    for (char const* c = kCamera; *c != '\0'; ++c) bytes += {*c, '\0'};
    ASSERT_EQ(1u, LoadBytes(bytes));
    EXPECT_EQ("Acme", Cameras()[0][0]);
}

TEST_F(QtDatabase, BytesThatAreNoUtf8_AreTakenOneByOne) {
    ASSERT_EQ(1u, LoadBytes("SIG 1 ,\"Ag\xFC\",\"\",\"\",\"A\",\"B\",\"\",\"\",\"\"\n"));
    EXPECT_EQ(wxString::FromUTF8("Ag\xC3\xBC"), Cameras()[0][0]);
}

TEST_F(QtDatabase, AnyBytes_AreReadWithoutHarm) {
    std::string bytes;
    for (int i = 0; i < 20000; ++i) bytes += static_cast<char>(i * 7 + i / 256);
    EXPECT_EQ(0u, LoadBytes(bytes));
}

TEST_F(QtDatabase, SecondLoad_DoublesTheLists) {
    LoadBytes(std::string(kCamera) + kSoftware);
    context->LoadUserQtDatabase();
    EXPECT_EQ(4u, context->GetListOfSignaturesInUserQtDatabase().size());
    EXPECT_EQ(2u, Cameras().size());
    EXPECT_EQ(2u, Software().size());
}

TEST_F(QtDatabase, Count_RisesWithLinesAndFallsWithARemovedRow) {
    std::uint64_t const before = context->GetNumberOfElementsInQtDatabases();
    LoadBytes(std::string(kCamera) + kSoftware);
    EXPECT_EQ(before + 2, context->GetNumberOfElementsInQtDatabases());
    context->RemoveEntryFromUserQtDatabase(2, 1);
    EXPECT_EQ(before + 1, context->GetNumberOfElementsInQtDatabases());
    EXPECT_TRUE(Software().empty());
    EXPECT_EQ(1u, context->GetListOfSignaturesInUserQtDatabase().size());
}

TEST_F(QtDatabase, RemovalUnderAnotherClass_LeavesTheRow) {
    LoadBytes(kCamera);
    context->RemoveEntryFromUserQtDatabase(2, 0);
    EXPECT_TRUE(context->GetListOfSignaturesInUserQtDatabase().empty());
    EXPECT_EQ(1u, Cameras().size());
}

TEST_F(QtDatabase, RemovalOfWhatIsNotThere_DoesNothing) {
    LoadBytes(kCamera);
    for (int index : {-1, 1, 99}) context->RemoveEntryFromUserQtDatabase(1, index);
    context->RemoveEntryFromUserQtDatabase(3, 0);
    EXPECT_EQ(1u, context->GetListOfSignaturesInUserQtDatabase().size());
}

TEST_F(QtDatabase, RecordWithoutItsClass_GetsThatOfTheCall) {
    JpegSignature record;
    record.make = "Acme";
    context->UpdateUserQtDatabase(2, record);
    record.editorClass = "1";
    context->UpdateUserQtDatabase(2, record);
    context->UpdateUserQtDatabase(0, record);
    std::vector<JpegSignature> const& all = context->GetListOfSignaturesInUserQtDatabase();
    ASSERT_EQ(2u, all.size());
    EXPECT_EQ("2", all[0].editorClass);
    EXPECT_EQ("1", all[1].editorClass);
    EXPECT_EQ(2u, Software().size());
}

TEST_F(QtDatabase, LineWithoutAClass_LeavesTheOtherFields) {
    JpegSignature record;
    record.make = "before";
    EXPECT_EQ(0, Parse("no class here", record));
    EXPECT_EQ("before", record.make);
}

TEST_F(QtDatabase, Parsing_CutsTheFirstLineOnly) {
    wxString text = "SIG 2 ,\"a\",\"b\"\nrest\nof it";
    JpegSignature record;
    EXPECT_EQ(2, context->ParseQtDatabaseString(text, record));
    EXPECT_EQ("rest\nof it", text);
    EXPECT_EQ("b", record.model);
    EXPECT_EQ("", record.softwareName);
}

TEST_F(QtDatabase, CompiledRecords_AreListedByTheirClass) {
    std::size_t cameras = 0;
    std::size_t software = 0;
    for (JpegsnoopSignature const* record = GetInternalJpegSignatures(); record->editorClass != 0; ++record) {
        ++(record->editorClass == 1 ? cameras : software);
    }
    EXPECT_EQ(cameras, context->GetListOfEditorsInInternalQtDatabase(0).size());
    EXPECT_EQ(software, context->GetListOfEditorsInInternalQtDatabase(1).size());
    EXPECT_EQ(cameras + software, context->GetNumberOfElementsInQtDatabases());
}

TEST_F(QtDatabase, CompiledRow_HoldsTheSoftwareNameBeforeTheHashes) {
    JpegsnoopSignature const record = {1, "m", "o", "q", "s", "r", "2x2", "v", "n", "", "", "", ""};
    context->UpdateInternalQtDatabase(1, record);
    context->UpdateInternalQtDatabase(7, record);
    EXPECT_EQ((VecString{"m", "o", "q", "n", "s", "r"}), context->GetListOfEditorsInInternalQtDatabase(0).back());
}
