// Values at the automation interface: references, numbers, octets and the lines that make properties.
#include "frame/AutomationAuto.h"

#include <cstring>
#include <gtest/gtest.h>
#include <numeric>
#include <vector>

namespace {

VARIANT Of(VARTYPE type, LONGLONG bits) {
    VARIANT value{};
    value.vt = type;
    value.llVal = bits;
    return value;
}

VARIANT Real(double number) {
    VARIANT value{};
    value.vt = VT_R8;
    value.dblVal = number;
    return value;
}

VARIANT To(VARIANT& target) {
    VARIANT value{};
    value.vt = VT_VARIANT | VT_BYREF;
    value.pvarVal = &target;
    return value;
}

TEST(Values, AreFoundThroughEveryReference) {
    constexpr LONGLONG kBits = 0x1122334455667788;
    using Rows = std::vector<std::pair<int, std::size_t>>;
    for (const auto& [type, width] :
         Rows{{VT_I1, 1},    {VT_UI1, 1},  {VT_I2, 2},      {VT_UI2, 2},      {VT_BOOL, 2},
              {VT_I4, 4},    {VT_UI4, 4},  {VT_INT, 4},     {VT_UINT, 4},     {VT_R4, 4},
              {VT_ERROR, 4}, {VT_I8, 8},   {VT_UI8, 8},     {VT_R8, 8},       {VT_CY, 8},
              {VT_DATE, 8},  {VT_BSTR, 8}, {VT_UNKNOWN, 8}, {VT_DISPATCH, 8}, {VT_ARRAY | VT_UI1, 8}}) {
        VARIANT direct = Of(static_cast<VARTYPE>(type), kBits);
        VARIANT reference{};
        reference.vt = static_cast<VARTYPE>(type | VT_BYREF);
        reference.byref = &direct.llVal;
        VARIANT toDirect = To(direct);
        VARIANT toReference = To(reference);
        VARIANT further = To(toReference);
        for (const VARIANT* form : {&direct, &reference, &toDirect, &toReference, &further}) {
            const VARIANT found = ValueIn(form);
            EXPECT_EQ(found.vt, type);
            EXPECT_EQ(std::memcmp(&found.llVal, &kBits, width), 0) << type;
        }
    }
    VARIANT self{};
    self = To(self);
    VARIANT record = Of(VT_RECORD | VT_BYREF, 1);
    VARIANT nowhere = Of(VT_VARIANT | VT_BYREF, 0);
    VARIANT nothing = Of(VT_BSTR | VT_BYREF, 0);
    for (const VARIANT* form : {static_cast<VARIANT*>(nullptr), &self, &record, &nowhere, &nothing}) {
        EXPECT_EQ(ValueIn(form).vt, VT_EMPTY);
        EXPECT_EQ(ObjectIn(form), nullptr);
        EXPECT_FALSE(OctetsIn(form));
    }
}

TEST(Values, IntegersOfAnyWidth) {
    BstrOwner digit(::SysAllocString(L"5"));
    VARIANT text{};
    text.vt = VT_BSTR;
    text.bstrVal = digit.Get();
    using Found = std::optional<std::uint32_t>;
    for (const auto& [value, expected] : std::vector<std::pair<VARIANT, Found>>{
             {Of(VT_I1, 0xFF), 0xFFFFFFFF},
             {Of(VT_UI1, 0xFF), 0xFF},
             {Of(VT_I2, 0x8000), 0xFFFF8000},
             {Of(VT_UI2, 0x8000), 0x8000},
             {Of(VT_I4, -2), 0xFFFFFFFE},
             {Of(VT_UI4, 0xFFFFFFFE), 0xFFFFFFFE},
             {Of(VT_INT, 7), 7},
             {Of(VT_UINT, 8), 8},
             {Of(VT_BOOL, VARIANT_TRUE), 1},
             {Of(VT_BOOL, VARIANT_FALSE), 0},
             {Real(2.0), 2},
             {Real(4294967295.0), 0xFFFFFFFF},
             {Real(1e300), {}},
             {Of(VT_I8, 1), {}},
             {Of(VT_EMPTY, 0), {}},
             {Of(VT_NULL, 0), {}},
             {text, {}},
         }) {
        EXPECT_EQ(IntegerIn(value), expected) << value.vt;
    }
}

// --- octets

Octets EveryOctet() {
    Octets all{std::string(256, '\0')};
    std::iota(all.bytes.begin(), all.bytes.end(), '\0');
    return all;
}

// An array of one dimension with an octet in each element, in the way of its type.
class Array {
  public:
    Array(VARTYPE type, LONG lowest, const Octets& octets) {
        SAFEARRAYBOUND bounds{static_cast<ULONG>(octets.bytes.size()), lowest};
        value.vt = static_cast<VARTYPE>(VT_ARRAY | type);
        value.parray = ::SafeArrayCreate(type, 1, &bounds);
        LONG at = lowest;
        for (const char octet : octets.bytes) {
            VARIANT element{};
            element.vt = at % 2 == 0 ? VT_I2 : VT_I4;  // as scripts make them
            element.llVal = static_cast<std::uint8_t>(octet) | 0x1200;
            void* put = type == VT_VARIANT ? static_cast<void*>(&element) : &element.llVal;
            EXPECT_EQ(::SafeArrayPutElement(value.parray, &at, put), S_OK);
            ++at;
        }
    }
    Array(const Array&) = delete;
    Array& operator=(const Array&) = delete;
    ~Array() { EXPECT_EQ(::SafeArrayDestroy(value.parray), S_OK); }  // fails for one that stayed locked

    VARIANT value{};
};

TEST(OctetsInArrays, ComeFromEveryTypeAndBound) {
    for (const VARENUM type :
         {VT_UI1, VT_I1, VT_UI2, VT_I2, VT_UI4, VT_I4, VT_UINT, VT_INT, VT_UI8, VT_I8, VT_VARIANT}) {
        for (const LONG lowest : {0, 1, -5}) {
            Array array(static_cast<VARTYPE>(type), lowest, EveryOctet());
            EXPECT_EQ(OctetsIn(&array.value), EveryOctet()) << type << " from " << lowest;
            VARIANT reference{};
            reference.vt = static_cast<VARTYPE>(array.value.vt | VT_BYREF);
            reference.pparray = &array.value.parray;
            const VARIANT further = To(reference);
            EXPECT_EQ(OctetsIn(&further), EveryOctet()) << type;
        }
        Array empty(static_cast<VARTYPE>(type), 0, {});
        EXPECT_EQ(OctetsIn(&empty.value), Octets{}) << type;
    }
    Array locked(VT_UI1, 0, {"ab"});
    ::SafeArrayLock(locked.value.parray);
    EXPECT_EQ(OctetsIn(&locked.value), Octets{"ab"});
    EXPECT_EQ(::SafeArrayUnlock(locked.value.parray), S_OK);
}

// Elements of a script's array.
TEST(OctetsInArrays, TakeNumbersAndNothing) {
    Array array(VT_VARIANT, 0, {std::string(4, '\0')});
    auto* elements = static_cast<VARIANT*>(array.value.parray->pvData);
    VARIANT number = Of(VT_I4, 0x41);
    elements[0] = Real(255.0);
    elements[1] = To(number);
    elements[2] = Of(VT_BOOL, VARIANT_TRUE);
    elements[3] = Of(VT_EMPTY, 0);
    EXPECT_EQ(OctetsIn(&array.value), Octets{std::string("\xFF"
                                                         "A\x01\x00",
                                                         4)});
    elements[3].vt = VT_BSTR;
    elements[3].bstrVal = ::SysAllocString(L"5");
    EXPECT_FALSE(OctetsIn(&array.value));
}

TEST(OctetsInArrays, OtherArraysAreRefused) {
    for (const VARENUM type : {VT_R4, VT_R8, VT_BOOL, VT_CY, VT_BSTR}) {
        Array array(static_cast<VARTYPE>(type), 0, {});
        EXPECT_FALSE(OctetsIn(&array.value)) << type;
    }
    SAFEARRAYBOUND bounds[2]{{2, 0}, {2, 0}};
    VARIANT square{};
    square.vt = VT_ARRAY | VT_UI1;
    square.parray = ::SafeArrayCreate(VT_UI1, 2, bounds);
    EXPECT_FALSE(OctetsIn(&square));
    ::SafeArrayDestroy(square.parray);
    Array misnamed(VT_I4, 0, {"abc"});
    misnamed.value.vt = VT_ARRAY | VT_UI1;
    EXPECT_FALSE(OctetsIn(&misnamed.value));
    const VARIANT none = Of(VT_ARRAY | VT_UI1, 0);
    EXPECT_FALSE(OctetsIn(&none));
    const VARIANT number = Of(VT_UI1, 5);
    EXPECT_FALSE(OctetsIn(&number));
    // A count that nothing lies behind.
    SAFEARRAY hollow{};
    hollow.cDims = 1;
    hollow.cbElements = 1;
    hollow.rgsabound[0].cElements = 0xFFFFFFFF;
    VARIANT huge{};
    huge.vt = VT_ARRAY | VT_UI1;
    huge.parray = &hollow;
    EXPECT_FALSE(OctetsIn(&huge));
}

TEST(OctetsInArrays, AreMadeAsBytes) {
    for (const Octets& octets : {EveryOctet(), Octets{}, Octets{std::string(1 << 20, '\x8C')}}) {
        VariantOwner made;
        *made.Receive() = NewByteArray(octets);
        EXPECT_EQ(made.Get().vt, VT_ARRAY | VT_UI1);
        EXPECT_EQ(OctetsIn(&made.Get()), octets);
    }
}

TEST(OctetsInText, GoOneToOne) {
    const BstrOwner text(NewBstr(EveryOctet()));
    ASSERT_EQ(::SysStringLen(text.Get()), 256U);
    for (int i = 0; i < 256; ++i) EXPECT_EQ(text.Get()[i], i);
    EXPECT_EQ(OctetsOf(text.Get()), EveryOctet());
    const BstrOwner wide(::SysAllocString(L"\x018C\x0152\xFF41"));
    EXPECT_EQ(OctetsOf(wide.Get()), Octets{"\x8CRA"});
    EXPECT_EQ(OctetsOf(nullptr), Octets{});
    const BstrOwner ansi(NewBstr(std::string("\x8C")));  // text is another matter
    EXPECT_EQ(ansi.Get()[0], 0x0152);
}

// --- property lines

struct ISample {
    virtual ~ISample() = default;
    virtual STDMETHODIMP get_Text(BSTR*) noexcept = 0;
    virtual STDMETHODIMP put_Text(BSTR) noexcept = 0;
    virtual STDMETHODIMP get_Raw(BSTR*) noexcept = 0;
    virtual STDMETHODIMP put_Raw(BSTR) noexcept = 0;
    virtual STDMETHODIMP get_Flag(LONG*) noexcept = 0;
    virtual STDMETHODIMP put_Flag(LONG) noexcept = 0;
    virtual STDMETHODIMP get_RawLength(LONG*) noexcept = 0;
    virtual STDMETHODIMP get_Failing(BSTR*) noexcept = 0;
};

struct Sample final : ISample {
    std::string text;
    Octets raw;
    bool flag = false;

    AUTO_TEXT(Text, text)
    AUTO_OCTETS(Raw, raw)
    AUTO_FLAG(Flag, flag)
    AUTO_NUMBER_READ(RawLength, raw.bytes.size())
    AUTO_TEXT_READ(Failing, text.substr(text.size() + 1))
};

TEST(PropertyLines, ConvertByTheTypeOfTheField) {
    Sample sample;
    const BstrOwner given(::SysAllocString(L"\x0152\x20AC"));
    sample.put_Text(given.Get());
    sample.put_Raw(given.Get());
    EXPECT_EQ(sample.text, "\x8C\x80");
    EXPECT_EQ(sample.raw, Octets{"\x52\xAC"});
    BstrOwner read;
    sample.get_Text(read.Receive());
    EXPECT_EQ(WideOf(read.Get()), u"\u0152\u20AC");
    sample.get_Raw(read.Receive());
    EXPECT_EQ(WideOf(read.Get()), u"\x52\xAC");
    LONG number = 0;
    sample.get_RawLength(&number);
    EXPECT_EQ(number, 2);
    for (const auto& [put, got] : {std::pair{5L, -1L}, {0L, 0L}, {LONG_MIN, -1L}}) {
        sample.put_Flag(put);
        sample.get_Flag(&number);
        EXPECT_EQ(number, got);
    }
    EXPECT_EQ(sample.get_Failing(read.Receive()), S_OK);
    EXPECT_EQ(read.Get(), nullptr);
    EXPECT_EQ(sample.get_Failing(nullptr), S_OK);
}

}  // namespace
