// SPDX-License-Identifier: Apache-2.0
#include "tolbase/parameter.h"

#include <cmath>
#include <limits>

#include "tests/support/tempdir.h"

namespace {

Parameter Option(int selected = 1) {
    return CreateParameterOption("Map", "", {"Gray", "Color", "Overlay"}, selected);
}

int CodeOf(const std::function<void()>& work) {
    try {
        work();
    } catch (const TolException& error) {
        return error.GetMessage().empty() && error.GetType() == ExceptionGeneral ? error.GetCode() : -1;
    }
    return 0;
}

}  // namespace

TEST(Parameter, Factories_GiveTheTypeNumbers) {
    EXPECT_EQ(0, CreateParameterBool("", "", true).GetType());
    EXPECT_EQ(1, CreateParameterInt("", "", 1).GetType());
    EXPECT_EQ(1, CreateParameterDouble("", "", 1).GetType());
    EXPECT_EQ(2, CreateParameterIntMinMax("", "", 1, 0, 2).GetType());
    EXPECT_EQ(3, CreateParameterDoubleMinMax("", "", 1, 0, 2, 0.5).GetType());
    EXPECT_EQ(4, Option().GetType());
    EXPECT_EQ(29, CreateParameterFolder("", "", "/a", {}, "").GetType());
    EXPECT_EQ(42, CreateParameterFile("", "", "/a", {}).GetType());
    EXPECT_EQ(45, CreateParameterFiles("", "", {"/a"}, {}).GetType());
    EXPECT_EQ(49, CreateParameterStringMap("", "", {}).GetType());
    EXPECT_EQ(90, CreateParameterOutputString("", "").GetType());
    EXPECT_EQ(90, CreateParameterTable("", "").GetType());
}

TEST(Parameter, NameAndDescription_AreKept) {
    const Parameter parameter = CreateParameterInt("Count", "How many", 7);
    EXPECT_EQ(wxString("Count"), parameter.Name());
    EXPECT_EQ(wxString("How many"), parameter.GetDescription());
    EXPECT_EQ(7, parameter.GetValue<int>());
    EXPECT_FALSE(parameter.IsChanged());
}

TEST(Parameter, FactoryValueOutsideTheRange_IsTakenToTheNearestBound) {
    EXPECT_EQ(10, CreateParameterIntMinMax("", "", 11, 0, 10).GetValue<int>());
    EXPECT_EQ(1, CreateParameterImageQuality("", "", 0).GetValue<int>());
    EXPECT_EQ(2, Option(7).GetValue<int>());
    EXPECT_EQ(0, CreateParameterOption("", "", {}, -1).GetValue<int>());
}

TEST(Parameter, Set_TellsWhetherSomethingChanged) {
    Parameter parameter = CreateParameterInt("", "", 1);
    EXPECT_FALSE(parameter.Set(boost::any(1)));
    EXPECT_FALSE(parameter.IsChanged());
    EXPECT_TRUE(parameter.Set(boost::any(2)));
    EXPECT_TRUE(parameter.IsChanged());
    parameter.SetChanged(false);
    EXPECT_FALSE(parameter.IsChanged());
}

TEST(Parameter, SetOfAnotherType_IsRefused) {
    Parameter parameter = CreateParameterInt("", "", 5);
    EXPECT_FALSE(parameter.Set(boost::any(2.0)));
    EXPECT_FALSE(parameter.Set(boost::any(int64_t{2})));
    EXPECT_FALSE(parameter.Set(boost::any(true)));
    EXPECT_FALSE(parameter.Set(boost::any(wxString("2"))));
    EXPECT_FALSE(parameter.Set(boost::any()));
    EXPECT_FALSE(parameter.Set("2"));
    EXPECT_EQ(5, parameter.GetValue<int>());
}

TEST(Parameter, SetOutOfRange_IsRefused) {
    Parameter parameter = CreateParameterIntMinMax("", "", 5, 1, 10);
    EXPECT_FALSE(parameter.Set(boost::any(0)));
    EXPECT_FALSE(parameter.Set(boost::any(11)));
    EXPECT_TRUE(parameter.Set(boost::any(10)));
    EXPECT_TRUE(parameter.Set(boost::any(1)));
    Parameter option = Option();
    EXPECT_FALSE(option.Set(boost::any(3)));
    EXPECT_FALSE(option.Set(boost::any(-1)));
}

TEST(Parameter, NumberThatIsNotFinite_IsRefused) {
    Parameter parameter = CreateParameterDouble("", "", 1.5);
    EXPECT_FALSE(parameter.Set(boost::any(std::nan(""))));
    EXPECT_FALSE(parameter.Set(boost::any(std::numeric_limits<double>::infinity())));
    EXPECT_FALSE(parameter.SetString("nan"));
    EXPECT_FALSE(parameter.SetString("1e999"));
    EXPECT_DOUBLE_EQ(1.5, parameter.GetValue<double>());
}

TEST(Parameter, Texts_ComeInEveryForm) {
    Parameter parameter = CreateParameterString("", "", "");
    EXPECT_TRUE(parameter.Set("a"));
    EXPECT_TRUE(parameter.Set(L"b"));
    EXPECT_TRUE(parameter.Set(wxString("c")));
    EXPECT_TRUE(parameter.Set(boost::any("\xC3\xBC")));
    EXPECT_EQ(wxString::FromUTF8("\xC3\xBC"), parameter.GetValue<wxString>());
    EXPECT_TRUE(parameter.Set(boost::any(std::string("\xC3\xA4"))));
    EXPECT_EQ(wxString::FromUTF8("\xC3\xA4"), parameter.GetValue<wxString>());
}

TEST(Parameter, SetFromAnother_TakesTheValueOnly) {
    Parameter parameter = CreateParameterInt("a", "", 5);
    EXPECT_TRUE(parameter.Set(CreateParameterInt("b", "", 8)));
    EXPECT_EQ(wxString("a"), parameter.Name());
    EXPECT_EQ(8, parameter.GetValue<int>());
    EXPECT_FALSE(parameter.Set(CreateParameterInt("b", "", 8)));
    EXPECT_FALSE(parameter.Set(CreateParameterDouble("b", "", 9)));
    EXPECT_FALSE(parameter.Set(Parameter()));
}

TEST(Parameter, SetString_RefusesWhatDoesNotParse) {
    Parameter number = CreateParameterIntMinMax("", "", 5, 0, 10);
    EXPECT_TRUE(number.SetString("7"));
    EXPECT_FALSE(number.SetString("7"));
    EXPECT_FALSE(number.SetString("seven"));
    EXPECT_FALSE(number.SetString(""));
    EXPECT_FALSE(number.SetString("99"));
    EXPECT_EQ(7, number.GetValue<int>());
    Parameter truth = CreateParameterBool("", "", true);
    EXPECT_FALSE(truth.SetString("maybe"));
    EXPECT_TRUE(truth.SetString("false"));
    Parameter size = CreateParameterImageResolution("", "");
    EXPECT_TRUE(size.SetString("640x480"));
    EXPECT_FALSE(size.SetString("large"));
    EXPECT_EQ(wxSize(640, 480), size.GetValue<wxSize>());
}

TEST(Parameter, SetStringOfAnOption_TakesItsText) {
    Parameter option = Option(1);
    EXPECT_TRUE(option.SetString("Overlay"));
    EXPECT_EQ(2, option.GetValue<int>());
    EXPECT_FALSE(option.SetString("overlay"));
    EXPECT_FALSE(option.SetString("0"));
    EXPECT_EQ(2, option.GetValue<int>());
}

TEST(Parameter, StringMap_IsNotReadFromText) {
    Parameter map = CreateParameterStringMap("", "", {{"a", "1"}});
    EXPECT_FALSE(map.SetString("{\"b\":\"2\"}"));
    EXPECT_EQ(wxString("a: 1"), map.ToReport());
    EXPECT_TRUE(map.Set(boost::any(std::map<wxString, wxString>{{"b", "2"}})));
    EXPECT_EQ(wxString("b: 2"), map.ToReport());
}

TEST(Parameter, IntThatStandsAsText_ReadsAsInt) {
    Parameter parameter = CreateParameterInt("", "", 1);
    parameter.SetUnchecked(boost::any(wxString("12")));
    EXPECT_EQ(12, parameter.GetValue<int>());
    EXPECT_EQ(wxString("12"), parameter.ToText());
    EXPECT_EQ(wxString("12"), parameter.GetValueAsJson().AsString());
    EXPECT_TRUE(parameter.Set(boost::any(12)));
    EXPECT_TRUE(parameter.Holds<int>());
}

TEST(Parameter, TypedReadOfAText_Converts) {
    const Parameter text = CreateParameterString("", "", "17");
    EXPECT_EQ(17, text.GetValue<int>());
    EXPECT_EQ(INT64_C(17), text.GetValue<int64_t>());
    EXPECT_DOUBLE_EQ(17.0, text.GetValue<double>());
    EXPECT_FALSE(text.GetValue<bool>());
    EXPECT_EQ(0, CreateParameterString("", "", "seventeen").GetValue<int>());
    EXPECT_EQ((VecVecString{{"a"}}), CreateParameterString("", "", "[[\"a\"]]").GetValue<VecVecString>());
}

TEST(Parameter, TypedReadOfAnotherType_ThrowsCode61) {
    const Parameter number = CreateParameterInt("", "", 5);
    EXPECT_EQ(61, CodeOf([&] { (void)number.GetValue<double>(); }));
    EXPECT_EQ(61, CodeOf([&] { (void)number.GetValue<wxString>(); }));
    EXPECT_EQ(61, CodeOf([&] { (void)number.GetValue<VecString>(); }));
    EXPECT_EQ(61, CodeOf([&] { (void)number.GetValue<int64_t>(); }));
    EXPECT_EQ(61, CodeOf([] { (void)CreateParameterTable("", "").GetValue<VecString>(); }));
    EXPECT_EQ(61, CodeOf([] { (void)Parameter().GetValue<int>(); }));
}

TEST(Parameter, Bounds_AreThoseOfNumbersAlone) {
    const Parameter number = CreateParameterDoubleMinMax("", "", 1, 0.5, 2, 0.25);
    EXPECT_DOUBLE_EQ(0.5, number.GetMinimum());
    EXPECT_DOUBLE_EQ(2.0, number.GetMaximum());
    EXPECT_DOUBLE_EQ(0.25, number.GetStep());
    EXPECT_DOUBLE_EQ(1.0, CreateParameterIntMinMax("", "", 1, 0, 2).GetStep());
    EXPECT_DOUBLE_EQ(-2147483648.0, CreateParameterInt("", "", 1).GetMinimum());
    EXPECT_EQ(61, CodeOf([] { CreateParameterString("", "", "").GetMinimum(); }));
    EXPECT_EQ(61, CodeOf([] { Option().GetMaximum(); }));
    EXPECT_EQ(61, CodeOf([] { CreateParameterBool("", "", true).GetStep(); }));
    EXPECT_EQ(61, CodeOf([] { Parameter().GetStep(); }));
}

TEST(Parameter, SetUnchecked_GoesPastTheRange) {
    Parameter option = Option(1);
    option.SetUnchecked(boost::any(7));
    EXPECT_EQ(7, option.GetValue<int>());
    EXPECT_EQ(wxString("7"), option.ToReport());
    Parameter number = CreateParameterIntMinMax("", "", 5, 1, 10);
    number.SetUnchecked(boost::any(0));
    EXPECT_EQ(0, number.GetValue<int>());
}

TEST(Parameter, Texts_OfEveryKind) {
    EXPECT_EQ(wxString("Color"), Option().ToReport());
    EXPECT_EQ(wxString("Color"), Option().ToText());
    EXPECT_EQ(wxString("Color"), Option().GetValueAsJson().AsString());
    EXPECT_EQ(wxString("-12"), CreateParameterInt("", "", -12).GetValueAsJson().AsString());
    EXPECT_EQ(wxString("10000000000"), CreateParameterInt64("", "", 10000000000).ToText());
    EXPECT_EQ(wxString("45"), CreateParameterDouble("", "", 45).ToReport());
    EXPECT_EQ(wxString("true"), CreateParameterBool("", "", true).ToReport());
    EXPECT_EQ(wxString("0x0"), CreateParameterImageResolution("", "").ToText());
    EXPECT_EQ(wxString("a, b"), CreateParameterVectorString("", "", {"a", "b"}).ToReport());
    EXPECT_EQ(wxString("[\"a\",\"b\"]"), CreateParameterVectorString("", "", {"a", "b"}).ToText());
    EXPECT_EQ(wxString("[]"), CreateParameterTable("", "").ToText());
    EXPECT_EQ(wxString(), Parameter().ToText());
}

TEST(Parameter, Reset_ReturnsToTheDefault) {
    Parameter parameter = CreateParameterInt("", "", 5);
    parameter.Set(boost::any(9));
    parameter.Reset();
    EXPECT_EQ(5, parameter.GetValue<int>());
    EXPECT_FALSE(parameter.IsChanged());
}

TEST(Parameter, Reference_IsCleared) {
    const Parameter target = CreateParameterInt("", "", 5);
    Parameter parameter = target;
    parameter.SetRef(&target);
    EXPECT_EQ(&target, Parameter(parameter).GetRef());
    parameter.ClearRef();
    EXPECT_EQ(nullptr, parameter.GetRef());
    EXPECT_EQ(5, parameter.GetValue<int>());
}

TEST(Parameter, Equality_IsOfNameTypeAndValue) {
    const Parameter five = CreateParameterInt("n", "", 5);
    EXPECT_TRUE(five == CreateParameterInt("n", "other", 5));
    EXPECT_TRUE(five != CreateParameterInt("n", "", 6));
    EXPECT_TRUE(five != CreateParameterInt("m", "", 5));
    EXPECT_TRUE(five != CreateParameterDouble("n", "", 5));
    EXPECT_TRUE(CreateParameterString("n", "", "a") != CreateParameterString("n", "", "A"));
    EXPECT_TRUE(CreateParameterVectorString("n", "", {"a"}) != CreateParameterVectorString("n", "", {"a", "b"}));
    EXPECT_TRUE(Parameter() == Parameter());
}

TEST(Parameter, Copy_IsIndependent) {
    const Parameter original = CreateParameterInt("n", "", 5);
    Parameter copy(original);
    copy.Set(boost::any(6));
    EXPECT_EQ(5, original.GetValue<int>());
}

TEST(Validator, Text_ComparesWithCase) {
    const ValidatorTyped<wxString> validator;
    EXPECT_FALSE(validator.AreEqual(wxString("a"), wxString("A")));
    EXPECT_TRUE(validator.AreEqual(wxString("a"), wxString("a")));
    EXPECT_EQ(61, CodeOf([&] { (void)validator.AreEqual(wxString("a"), 1); }));
}

TEST(Validator, Table_IsCheckedClonedAndCompared) {
    const ValidatorTyped<VecVecString> validator("caption");
    const VecVecString table = {{"a", "b"}};
    EXPECT_EQ(table, boost::any_cast<VecVecString>(validator.CheckedCopy(table)));
    EXPECT_EQ(61, CodeOf([&] { (void)validator.CheckedCopy(wxString("a")); }));
    EXPECT_TRUE(validator.AreEqual(table, table));
    EXPECT_FALSE(validator.AreEqual(table, VecVecString{{"a", "B"}}));
    const std::unique_ptr<Validator> clone = validator.Clone();
    EXPECT_EQ(wxString("caption"), clone->GetText());
    EXPECT_EQ(wxString("[[\"a\",\"b\"]]"), clone->ValueToText(table));
    EXPECT_EQ(wxString("[[\"a\",\"b\"]]"), clone->ValueToPlainText(table));
    EXPECT_EQ(table, boost::any_cast<VecVecString>(clone->JsonToValue(clone->ValueToJson(table))));
}

namespace {

// The base's own answers, seen through the least that a class must add.
class BareValidator : public Validator {
public:
    boost::any CheckedCopy(const boost::any& value) const override { return value; }
    bool AreEqual(const boost::any&, const boost::any&) const override { return false; }
    std::unique_ptr<Validator> Clone() const override { return std::make_unique<BareValidator>(); }
};

}  // namespace

TEST(Validator, Base_KnowsNothing) {
    const BareValidator bare;
    EXPECT_TRUE(bare.ValueToJson(1).IsNull());
    EXPECT_TRUE(bare.JsonToValue(wxJSONValue(1)).empty());
    EXPECT_TRUE(bare.TextToValue("1").empty());
    EXPECT_EQ(wxString(), bare.ValueToText(1));
    EXPECT_EQ(wxString(), bare.ValueToReport(1));
    EXPECT_EQ(wxString(), bare.ValueToPlainText(1));
    EXPECT_FALSE(bare.IsNumeric());
    EXPECT_FALSE(bare.IsBounded());
}

TEST(Validator, NumericOperationsOfTheBase_ThrowCode61) {
    const BareValidator bare;
    EXPECT_EQ(61, CodeOf([&] { (void)bare.GetMinimum(); }));
    EXPECT_EQ(61, CodeOf([&] { (void)bare.GetMaximum(); }));
    EXPECT_EQ(61, CodeOf([&] { (void)bare.GetStep(); }));
    EXPECT_EQ(61, CodeOf([&] { (void)bare.ValueToNumber(1); }));
    EXPECT_EQ(61, CodeOf([&] { (void)bare.NumberToValue(1.0); }));
}

TEST(Validator, Number_ConvertsWithinItsRange) {
    const ValidatorNumber<int> number(0, 10, 2);
    EXPECT_TRUE(number.IsNumeric());
    EXPECT_TRUE(number.IsBounded());
    EXPECT_DOUBLE_EQ(4.0, number.ValueToNumber(4));
    EXPECT_EQ(4, boost::any_cast<int>(number.NumberToValue(4.7)));
    EXPECT_TRUE(number.NumberToValue(10.5).empty());
    EXPECT_TRUE(number.NumberToValue(std::nan("")).empty());
    EXPECT_EQ(INT64_MAX, boost::any_cast<int64_t>(ValidatorNumber<int64_t>().NumberToValue(9223372036854775807.0)));
}
