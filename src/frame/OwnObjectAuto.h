// How one of our objects gets at another directly, past its properties: by an IID that each class has for
// itself. It stands in no type library and is made anew whenever the module is loaded, so that no proxy
// carries it and not even another copy of the module knows it; such objects are reached through their public
// interface.
#pragma once
#include "frame/ValuesAuto.h"

#include <objbase.h>

// A class that can be reached answers `IsOwnIid` with IsEqualIID(iid, OwnIid<Class>()).
template <class Class>
const IID& OwnIid() {
    static const IID own = [] {
        IID made{};
        ::CoCreateGuid(&made);
        return made;
    }();
    return own;
}

// The object as what it is; null when it is none of ours.
template <class Class>
ComPointer<Class> OwnObject(IUnknown* object) {
    void* found = nullptr;
    if (object == nullptr || FAILED(object->QueryInterface(OwnIid<Class>(), &found))) {
        return ComPointer<Class>();
    }
    ComPointer<IUnknown> answer(static_cast<IUnknown*>(found));
    // A wrapper around one of ours may pass on whatever it does not know; what it shows of itself counts.
    if (answer.Get() != object) return ComPointer<Class>();
    return ComPointer<Class>(static_cast<Class*>(answer.Detach()));
}
