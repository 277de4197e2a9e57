// Reads a record out of an object that a caller hands in: one of ours directly, any other through its
// properties. A record lists its fields once, each with the property that shows it.
#pragma once
#include "foundation/ResultCode.h"
#include "frame/OwnObjectAuto.h"
#include "frame/ValuesAuto.h"

namespace record {

template <class Interface, class Value, class Field>
void ReadField(Interface* source, HRESULT (STDMETHODCALLTYPE Interface::*getter)(Value*), Field& field) {
    if constexpr (std::is_same_v<Value, BSTR>) {
        BstrOwner text;
        (source->*getter)(text.Receive());
        Take(field, text.Get());
    } else {
        Value value{};
        (source->*getter)(&value);
        Take(field, value);
    }
}

// `OwnClass` has Record(); `eachField(visit)` visits with the pointers to a field and to its getter. 0 or
// `none` when the object is of neither kind.
template <class OwnClass, class Interface, class Record, class EachField>
ResultCode Read(IUnknown* object, Record& to, EachField eachField, ResultCode none) {
    if (const auto own = OwnObject<OwnClass>(object)) {
        eachField([&](auto field, auto) { to.*field = own->Record().*field; });
        return result::Success;
    }
    const auto foreign = InterfaceOf<Interface>(object);
    if (!foreign) return none;
    eachField([&](auto field, auto getter) { ReadField(foreign.Get(), getter, to.*field); });
    return result::Success;
}

}  // namespace record
