// SPDX-License-Identifier: Apache-2.0
#include "wx/jsonval.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <unordered_map>

#include "wx/jsonwriter.h"
#include "wxjson/utf8text.h"

// The members in order of insertion. A large object gets an index, so that a hostile file can't make it slow.
struct wxJSONValue::Object {
    static constexpr std::size_t IndexedFrom = 16;
    static constexpr std::size_t NotFound = static_cast<std::size_t>(-1);

    std::vector<Member> members;
    std::unordered_map<std::wstring, std::size_t> index;

    std::size_t Find(const wxString& key) const {
        if (!index.empty()) {
            const auto found = index.find(key.ToStdWstring());
            return found == index.end() ? NotFound : found->second;
        }
        for (std::size_t i = 0; i < members.size(); ++i)
            if (members[i].first == key) return i;
        return NotFound;
    }
    void Reindex() {
        index.clear();
        if (members.size() < IndexedFrom) return;
        for (std::size_t i = 0; i < members.size(); ++i) index.emplace(members[i].first.ToStdWstring(), i);
    }
    wxJSONValue& Get(const wxString& key) {
        std::size_t at = Find(key);
        if (at == NotFound) {
            at = members.size();
            members.emplace_back(key, wxJSONValue());
            if (index.empty())
                Reindex();
            else
                index.emplace(key.ToStdWstring(), at);
        }
        return members[at].second;
    }
};

namespace {

const wxJSONValue& InvalidValue() {
    static const wxJSONValue invalid(wxJSONTYPE_INVALID);
    return invalid;
}

// A number as text, in an integer type or as a double; no other number types are asked for.
template <class T>
bool ParseWhole(const wxString& text, T& number) {
    const std::string utf8 = wxJSONToUtf8(text);
    const char* end = utf8.data() + utf8.size();
    const auto result = std::from_chars(utf8.data(), end, number);
    return result.ec == std::errc() && result.ptr == end && !utf8.empty();
}

template <class T>
T FromDouble(double number) {
    // The bounds are powers of two (or zero), so both are exact; not-a-number fails the comparison.
    const double low = static_cast<double>(std::numeric_limits<T>::min());
    const double high = std::ldexp(1.0, std::numeric_limits<T>::digits);
    const double whole = std::trunc(number);
    return whole >= low && whole < high ? static_cast<T>(whole) : T(0);
}

template <class T, class From>
bool Fits(From number) {
    if constexpr (std::is_signed_v<From>) {
        if (number < 0) return std::is_signed_v<T> && number >= static_cast<int64_t>(std::numeric_limits<T>::min());
    }
    return static_cast<uint64_t>(number) <= static_cast<uint64_t>(std::numeric_limits<T>::max());
}

}  // namespace

wxJSONValue::wxJSONValue() = default;
wxJSONValue::wxJSONValue(wxJSONType type) {
    SetType(type);
}
wxJSONValue::wxJSONValue(bool value) : m_data(value) {}
wxJSONValue::wxJSONValue(int value) : m_data(static_cast<int64_t>(value)) {}
wxJSONValue::wxJSONValue(unsigned int value) : m_data(static_cast<uint64_t>(value)) {}
wxJSONValue::wxJSONValue(short value) : m_data(static_cast<int64_t>(value)) {}
wxJSONValue::wxJSONValue(unsigned short value) : m_data(static_cast<uint64_t>(value)) {}
wxJSONValue::wxJSONValue(long value) : m_data(static_cast<int64_t>(value)) {}
wxJSONValue::wxJSONValue(unsigned long value) : m_data(static_cast<uint64_t>(value)) {}
wxJSONValue::wxJSONValue(long long value) : m_data(static_cast<int64_t>(value)) {}
wxJSONValue::wxJSONValue(unsigned long long value) : m_data(static_cast<uint64_t>(value)) {}
wxJSONValue::wxJSONValue(double value) : m_data(value) {}
wxJSONValue::wxJSONValue(const char* text)
    : m_data(std::make_unique<wxString>(text == nullptr ? wxString() : wxString::FromUTF8(text))) {}
wxJSONValue::wxJSONValue(const wchar_t* text)
    : m_data(std::make_unique<wxString>(text == nullptr ? wxString() : wxString(text))) {}
wxJSONValue::wxJSONValue(const wxString& text) : m_data(std::make_unique<wxString>(text)) {}
wxJSONValue::wxJSONValue(const wxJSONValue& other) : m_data(Copy(other.m_data)) {}
wxJSONValue::wxJSONValue(wxJSONValue&& other) noexcept : m_data(std::exchange(other.m_data, Data())) {}
wxJSONValue::~wxJSONValue() = default;

wxJSONValue& wxJSONValue::operator=(const wxJSONValue& other) {
    // The copy is made first: `other` may be a part of this value.
    if (this != &other) {
        Data copy = Copy(other.m_data);
        m_data = std::move(copy);
    }
    return *this;
}

wxJSONValue& wxJSONValue::operator=(wxJSONValue&& other) noexcept {
    if (this != &other) {
        Data moved = std::exchange(other.m_data, Data());
        m_data = std::move(moved);
    }
    return *this;
}

wxJSONValue::Data wxJSONValue::Copy(const Data& data) {
    return std::visit(
        [](const auto& held) -> Data {
            using Held = std::decay_t<decltype(held)>;
            if constexpr (std::is_copy_constructible_v<Held>)
                return held;
            else
                return std::make_unique<typename Held::element_type>(*held);
        },
        data);
}

const wxJSONValue::Array* wxJSONValue::GetArray() const {
    const auto* array = std::get_if<std::unique_ptr<Array>>(&m_data);
    return array == nullptr ? nullptr : array->get();
}

const wxJSONValue::Object* wxJSONValue::GetObject() const {
    const auto* object = std::get_if<std::unique_ptr<Object>>(&m_data);
    return object == nullptr ? nullptr : object->get();
}

wxJSONValue::Array& wxJSONValue::MakeArray() {
    if (!IsArray()) m_data = std::make_unique<Array>();
    return *std::get<std::unique_ptr<Array>>(m_data);
}

wxJSONValue::Object& wxJSONValue::MakeObject() {
    if (!IsObject()) m_data = std::make_unique<Object>();
    return *std::get<std::unique_ptr<Object>>(m_data);
}

void wxJSONValue::SetType(wxJSONType type) {
    switch (type) {
        case wxJSONTYPE_NULL:
            m_data = Null();
            break;
        case wxJSONTYPE_BOOL:
            m_data = false;
            break;
        case wxJSONTYPE_INT:
        case wxJSONTYPE_LONG:
        case wxJSONTYPE_INT64:
        case wxJSONTYPE_SHORT:
            m_data = int64_t{0};
            break;
        case wxJSONTYPE_UINT:
        case wxJSONTYPE_ULONG:
        case wxJSONTYPE_UINT64:
        case wxJSONTYPE_USHORT:
            m_data = uint64_t{0};
            break;
        case wxJSONTYPE_DOUBLE:
            m_data = 0.0;
            break;
        case wxJSONTYPE_STRING:
        case wxJSONTYPE_CSTRING:
            m_data = std::make_unique<wxString>();
            break;
        case wxJSONTYPE_ARRAY:
            m_data = std::make_unique<Array>();
            break;
        case wxJSONTYPE_OBJECT:
            m_data = std::make_unique<Object>();
            break;
        case wxJSONTYPE_INVALID:
        default:
            m_data = Invalid();
            break;
    }
}

wxJSONType wxJSONValue::GetType() const {
    if (IsString()) return wxJSONTYPE_STRING;
    if (IsArray()) return wxJSONTYPE_ARRAY;
    if (IsObject()) return wxJSONTYPE_OBJECT;
    if (IsBool()) return wxJSONTYPE_BOOL;
    if (IsDouble()) return wxJSONTYPE_DOUBLE;
    if (std::holds_alternative<int64_t>(m_data)) return IsInt() ? wxJSONTYPE_INT : wxJSONTYPE_INT64;
    if (std::holds_alternative<uint64_t>(m_data)) return IsUInt() ? wxJSONTYPE_UINT : wxJSONTYPE_UINT64;
    return IsNull() ? wxJSONTYPE_NULL : wxJSONTYPE_INVALID;
}

bool wxJSONValue::IsValid() const {
    return !std::holds_alternative<Invalid>(m_data);
}
bool wxJSONValue::IsNull() const {
    return std::holds_alternative<Null>(m_data);
}
bool wxJSONValue::IsBool() const {
    return std::holds_alternative<bool>(m_data);
}
bool wxJSONValue::IsDouble() const {
    return std::holds_alternative<double>(m_data);
}
bool wxJSONValue::IsString() const {
    return std::holds_alternative<std::unique_ptr<wxString>>(m_data);
}
bool wxJSONValue::IsArray() const {
    return std::holds_alternative<std::unique_ptr<Array>>(m_data);
}
bool wxJSONValue::IsObject() const {
    return std::holds_alternative<std::unique_ptr<Object>>(m_data);
}

namespace {

template <class T, class Data>
bool HoldsIntegerFor(const Data& data) {
    if (const auto* number = std::get_if<int64_t>(&data)) return Fits<T>(*number);
    if (const auto* number = std::get_if<uint64_t>(&data)) return Fits<T>(*number);
    return false;
}

template <class T, class Data>
T IntegerOf(const Data& data) {
    if (const auto* number = std::get_if<int64_t>(&data)) return Fits<T>(*number) ? static_cast<T>(*number) : T(0);
    if (const auto* number = std::get_if<uint64_t>(&data)) return Fits<T>(*number) ? static_cast<T>(*number) : T(0);
    if (const auto* number = std::get_if<double>(&data)) return FromDouble<T>(*number);
    if (const auto* truth = std::get_if<bool>(&data)) return *truth ? T(1) : T(0);
    if (const auto* text = std::get_if<std::unique_ptr<wxString>>(&data)) {
        T number = 0;
        if (ParseWhole(**text, number)) return number;
        double fraction = 0;
        if (ParseWhole(**text, fraction)) return FromDouble<T>(fraction);
    }
    return T(0);
}

}  // namespace

bool wxJSONValue::IsInt() const {
    return HoldsIntegerFor<int>(m_data);
}
bool wxJSONValue::IsUInt() const {
    return HoldsIntegerFor<unsigned int>(m_data);
}
bool wxJSONValue::IsShort() const {
    return HoldsIntegerFor<short>(m_data);
}
bool wxJSONValue::IsUShort() const {
    return HoldsIntegerFor<unsigned short>(m_data);
}
bool wxJSONValue::IsLong() const {
    return HoldsIntegerFor<long>(m_data);
}
bool wxJSONValue::IsULong() const {
    return HoldsIntegerFor<unsigned long>(m_data);
}
bool wxJSONValue::IsInt64() const {
    return HoldsIntegerFor<int64_t>(m_data);
}
bool wxJSONValue::IsUInt64() const {
    return HoldsIntegerFor<uint64_t>(m_data);
}

int wxJSONValue::AsInt() const {
    return IntegerOf<int>(m_data);
}
unsigned int wxJSONValue::AsUInt() const {
    return IntegerOf<unsigned int>(m_data);
}
long wxJSONValue::AsLong() const {
    return IntegerOf<long>(m_data);
}
unsigned long wxJSONValue::AsULong() const {
    return IntegerOf<unsigned long>(m_data);
}
int64_t wxJSONValue::AsInt64() const {
    return IntegerOf<int64_t>(m_data);
}
uint64_t wxJSONValue::AsUInt64() const {
    return IntegerOf<uint64_t>(m_data);
}

double wxJSONValue::AsDouble() const {
    if (const auto* number = std::get_if<double>(&m_data)) return *number;
    if (const auto* number = std::get_if<int64_t>(&m_data)) return static_cast<double>(*number);
    if (const auto* number = std::get_if<uint64_t>(&m_data)) return static_cast<double>(*number);
    if (const auto* truth = std::get_if<bool>(&m_data)) return *truth ? 1.0 : 0.0;
    double number = 0;
    if (const auto* text = std::get_if<std::unique_ptr<wxString>>(&m_data)) {
        if (!ParseWhole(**text, number) || !std::isfinite(number)) number = 0;
    }
    return number;
}

bool wxJSONValue::AsBool() const {
    if (const auto* text = std::get_if<std::unique_ptr<wxString>>(&m_data)) return (*text)->IsSameAs("true", false);
    return AsDouble() != 0.0;
}

wxString wxJSONValue::AsString() const {
    if (const auto* text = std::get_if<std::unique_ptr<wxString>>(&m_data)) return **text;
    if (const auto* number = std::get_if<double>(&m_data)) {
        char digits[32];
        const auto result = std::to_chars(digits, digits + sizeof digits, *number);
        return wxString::FromAscii(digits, static_cast<std::size_t>(result.ptr - digits));
    }
    if (!IsValid()) return wxString();
    wxString text;
    wxJSONWriter(wxJSONWRITER_NONE).Write(*this, text);
    return text;
}

int wxJSONValue::Size() const {
    if (const Array* array = GetArray()) return static_cast<int>(array->size());
    if (const Object* object = GetObject()) return static_cast<int>(object->members.size());
    return -1;
}

bool wxJSONValue::HasMember(unsigned int index) const {
    return GetArray() != nullptr && index < GetArray()->size();
}

bool wxJSONValue::HasMember(const wxString& key) const {
    return GetObject() != nullptr && GetObject()->Find(key) != Object::NotFound;
}

wxArrayString wxJSONValue::GetMemberNames() const {
    wxArrayString names;
    for (const Member& member : Members()) names.Add(member.first);
    return names;
}

const wxJSONValue& wxJSONValue::ItemAt(unsigned int index) const& {
    return HasMember(index) ? (*GetArray())[index] : InvalidValue();
}

const wxJSONValue& wxJSONValue::ItemAt(const wxString& key) const& {
    const Object* object = GetObject();
    const std::size_t at = object == nullptr ? Object::NotFound : object->Find(key);
    return at == Object::NotFound ? InvalidValue() : object->members[at].second;
}

wxJSONValue wxJSONValue::ItemAt(unsigned int index) && {
    return HasMember(index) ? std::move(MakeArray()[index]) : wxJSONValue(wxJSONTYPE_INVALID);
}

wxJSONValue wxJSONValue::ItemAt(const wxString& key) && {
    return HasMember(key) ? std::move(MakeObject().Get(key)) : wxJSONValue(wxJSONTYPE_INVALID);
}

wxJSONValue wxJSONValue::Get(const wxString& key, const wxJSONValue& defaultValue) const {
    return HasMember(key) ? ItemAt(key) : defaultValue;
}

wxJSONValue& wxJSONValue::Item(unsigned int index) {
    Array& array = MakeArray();
    if (index >= array.size()) array.resize(static_cast<std::size_t>(index) + 1);
    return array[index];
}

wxJSONValue& wxJSONValue::Item(const wxString& key) {
    return MakeObject().Get(key);
}

// A copy is made first in both: `value` may be a part of this one.
wxJSONValue& wxJSONValue::Append(const wxJSONValue& value) {
    return Append(wxJSONValue(value));
}

wxJSONValue& wxJSONValue::Append(wxJSONValue&& value) {
    wxJSONValue element(std::move(value));
    return MakeArray().emplace_back(std::move(element));
}

bool wxJSONValue::Cat(const wxString& text) {
    if (!IsString()) return false;
    std::get<std::unique_ptr<wxString>>(m_data)->append(text);
    return true;
}

bool wxJSONValue::Remove(int index) {
    if (index < 0 || !HasMember(static_cast<unsigned int>(index))) return false;
    Array& array = MakeArray();
    array.erase(array.begin() + index);
    return true;
}

bool wxJSONValue::Remove(const wxString& key) {
    if (!HasMember(key)) return false;
    Object& object = MakeObject();
    object.members.erase(object.members.begin() + static_cast<std::ptrdiff_t>(object.Find(key)));
    object.Reindex();
    return true;
}

void wxJSONValue::Clear() {
    SetType(GetType());
}

bool wxJSONValue::IsSameAs(const wxJSONValue& other) const {
    if (IsArray() && other.IsArray()) {
        if (Size() != other.Size()) return false;
        for (std::size_t i = 0; i < Elements().size(); ++i)
            if (!Elements()[i].IsSameAs(other.Elements()[i])) return false;
        return true;
    }
    if (IsObject() && other.IsObject()) {
        if (Size() != other.Size()) return false;
        for (const Member& member : Members())
            if (!other.HasMember(member.first) || !member.second.IsSameAs(other.ItemAt(member.first))) return false;
        return true;
    }
    // The sign that an integer is stored with is no difference: 5 is 5.
    if (IsInt64() && other.IsInt64()) return AsInt64() == other.AsInt64();
    return GetType() == other.GetType() && AsString() == other.AsString();
}

const std::vector<wxJSONValue>& wxJSONValue::Elements() const {
    static const Array none;
    const Array* array = GetArray();
    return array == nullptr ? none : *array;
}

const std::vector<wxJSONValue::Member>& wxJSONValue::Members() const {
    static const std::vector<Member> none;
    const Object* object = GetObject();
    return object == nullptr ? none : object->members;
}
