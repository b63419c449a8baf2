// SPDX-License-Identifier: Apache-2.0
// A JSON value: null, number, truth value, text, array or object.
//
// Value semantics: a copy is deep and independent, so a value needs no lock as long as each thread has its own. The
// members of an object keep the order in which they were inserted. Integers keep all 64 bits.
//
// Reading never fails and never changes the value: what isn't there reads as an invalid value, what can't be converted
// as zero. The non-const operator[] makes what it is asked for, as std::map does.
#pragma once
#include <wx/arrstr.h>
#include <wx/string.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#define WXJSON_API __attribute__((visibility("default")))

enum wxJSONType : int {
    wxJSONTYPE_INVALID = 0,  // nothing is known: the item that was asked for isn't there
    wxJSONTYPE_NULL,
    wxJSONTYPE_INT,   // a signed integer that fits an int
    wxJSONTYPE_UINT,  // an unsigned one that fits an unsigned int
    wxJSONTYPE_DOUBLE,
    wxJSONTYPE_STRING,
    wxJSONTYPE_CSTRING,  // the same as STRING
    wxJSONTYPE_BOOL,
    wxJSONTYPE_ARRAY,
    wxJSONTYPE_OBJECT,
    wxJSONTYPE_LONG,    // as INT64
    wxJSONTYPE_INT64,   // a signed integer that needs more than an int
    wxJSONTYPE_ULONG,   // as UINT64
    wxJSONTYPE_UINT64,  // an unsigned integer that needs more than an unsigned int
    wxJSONTYPE_SHORT,   // as INT
    wxJSONTYPE_USHORT   // as UINT
};

class WXJSON_API wxJSONValue {
public:
    using Member = std::pair<wxString, wxJSONValue>;

    // A null value.
    wxJSONValue();
    // An empty (zero) value of the type.
    wxJSONValue(wxJSONType type);
    wxJSONValue(bool value);
    wxJSONValue(int value);
    wxJSONValue(unsigned int value);
    wxJSONValue(short value);
    wxJSONValue(unsigned short value);
    wxJSONValue(long value);
    wxJSONValue(unsigned long value);
    wxJSONValue(long long value);
    wxJSONValue(unsigned long long value);
    wxJSONValue(double value);
    // UTF-8; a null pointer gives the empty text.
    wxJSONValue(const char* text);
    wxJSONValue(const wchar_t* text);
    wxJSONValue(const wxString& text);
    wxJSONValue(const wxJSONValue& other);
    // Leaves `other` null.
    wxJSONValue(wxJSONValue&& other) noexcept;
    ~wxJSONValue();

    wxJSONValue& operator=(const wxJSONValue& other);
    wxJSONValue& operator=(wxJSONValue&& other) noexcept;

    wxJSONType GetType() const;
    bool IsValid() const;
    bool IsNull() const;
    // IsInt, IsUInt, IsShort ...: an integer that the type can hold.
    bool IsInt() const;
    bool IsUInt() const;
    bool IsShort() const;
    bool IsUShort() const;
    bool IsLong() const;
    bool IsULong() const;
    bool IsInt64() const;
    bool IsUInt64() const;
    // A number that was written with a fraction or an exponent; integers are none.
    bool IsDouble() const;
    bool IsBool() const;
    bool IsString() const;
    bool IsCString() const { return IsString(); }
    bool IsArray() const;
    bool IsObject() const;

    // Number of elements or members; -1 for what is neither array nor object.
    int Size() const;
    bool HasMember(unsigned int index) const;
    bool HasMember(const wxString& key) const;
    // The keys in order of insertion; empty for what is no object.
    wxArrayString GetMemberNames() const;

    // Numbers: what the value holds, a text that is a number, true as 1; a fraction is cut; 0 for all else, and where
    // the number doesn't fit.
    int AsInt() const;
    unsigned int AsUInt() const;
    long AsLong() const;
    unsigned long AsULong() const;
    int64_t AsInt64() const;
    uint64_t AsUInt64() const;
    double AsDouble() const;
    // True for true, for a number that isn't zero, and for the text "true".
    bool AsBool() const;
    // The text itself; the digits of a number (shortest form, with a point); "true", "false", "null"; the compact JSON
    // text of an array or object; empty for an invalid value.
    wxString AsString() const;

    // The element or member; an invalid value where there is none.
    const wxJSONValue& ItemAt(unsigned int index) const&;
    const wxJSONValue& ItemAt(const wxString& key) const&;
    wxJSONValue ItemAt(unsigned int index) &&;
    wxJSONValue ItemAt(const wxString& key) &&;
    wxJSONValue Get(const wxString& key, const wxJSONValue& defaultValue) const;

    // The element or member. A value of another type becomes an array or object, a missing member is made as null, an
    // array is filled up with nulls.
    wxJSONValue& Item(unsigned int index);
    wxJSONValue& Item(const wxString& key);
    wxJSONValue& operator[](unsigned int index) & { return Item(index); }
    wxJSONValue& operator[](const wxString& key) & { return Item(key); }
    const wxJSONValue& operator[](unsigned int index) const& { return ItemAt(index); }
    const wxJSONValue& operator[](const wxString& key) const& { return ItemAt(key); }
    wxJSONValue operator[](unsigned int index) && { return std::move(*this).ItemAt(index); }
    wxJSONValue operator[](const wxString& key) && { return std::move(*this).ItemAt(key); }

    // Adds an element at the end, making an array of what is none, and gives it.
    wxJSONValue& Append(const wxJSONValue& value);
    wxJSONValue& Append(wxJSONValue&& value);
    // Adds one text behind the one that is held; false if this is no text.
    bool Cat(const wxString& text);
    // False if there is no such element or member.
    bool Remove(int index);
    bool Remove(const wxString& key);
    // Empties the value and leaves its type.
    void Clear();
    // Empties the value and gives it a type.
    void SetType(wxJSONType type);

    // Same type and content; the order of an object's members doesn't count.
    bool IsSameAs(const wxJSONValue& other) const;

    // For walking through: the elements and members in order; empty where there are none.
    const std::vector<wxJSONValue>& Elements() const;
    const std::vector<Member>& Members() const;

private:
    struct Object;
    using Array = std::vector<wxJSONValue>;
    struct Invalid {};
    struct Null {};
    using Data = std::variant<Null, Invalid, bool, int64_t, uint64_t, double, std::unique_ptr<wxString>,
                              std::unique_ptr<Array>, std::unique_ptr<Object>>;

    static Data Copy(const Data& data);
    const Array* GetArray() const;
    const Object* GetObject() const;
    Array& MakeArray();
    Object& MakeObject();

    Data m_data;
};
