#include "TypeLibraryListing.h"

#include "Com.h"

namespace {

std::string Narrow(const std::wstring& text) {
    std::string out;
    for (const wchar_t c : text) out.push_back(static_cast<char>(c));
    return out;
}

std::string Guid(const GUID& guid) {
    wchar_t text[40];
    ::StringFromGUID2(guid, text, 40);
    return Narrow(text);
}

std::string Type(const TYPEDESC& type) {
    switch (type.vt) {
        case VT_PTR:
            return Type(*type.lptdesc) + "*";
        case VT_I4:
            return "LONG";
        case VT_BSTR:
            return "BSTR";
        case VT_VARIANT:
            return "VARIANT";
        case VT_HRESULT:
            return "HRESULT";
        case VT_VOID:
            return "void";
        default:
            return "vt" + std::to_string(type.vt);
    }
}

const char* KindOf(const FUNCDESC& function) {
    return function.invkind == INVOKE_PROPERTYGET   ? "get"
           : function.invkind == INVOKE_PROPERTYPUT ? "put"
                                                    : "method";
}

struct Texts {
    std::string name, help;
};

Texts TextsOf(ITypeInfo* info, MEMBERID member) {
    Bstr name, help;
    info->GetDocumentation(member, name.out(), help.out(), nullptr, nullptr);
    return {Narrow(name.str()), Narrow(help.str())};
}

std::string NameOf(ITypeInfo* info, MEMBERID member = MEMBERID_NIL) { return TextsOf(info, member).name; }

std::string Direction(const ELEMDESC& parameter) {
    const USHORT flags = parameter.paramdesc.wParamFlags;
    std::string text;
    if ((flags & PARAMFLAG_FIN) != 0) text += "in ";
    if ((flags & PARAMFLAG_FOUT) != 0) text += "out ";
    if ((flags & PARAMFLAG_FRETVAL) != 0) text += "retval ";
    if ((flags & PARAMFLAG_FOPT) != 0) text += "optional ";
    return text;
}

std::string Function(ITypeInfo* info, const FUNCDESC& function) {
    const Texts texts = TextsOf(info, function.memid);
    std::string line =
        "  " + std::to_string(function.memid) + " " + KindOf(function) + " " + texts.name + "(";
    for (SHORT i = 0; i < function.cParams; ++i) {
        const ELEMDESC& parameter = function.lprgelemdescParam[i];
        if (i > 0) line += ", ";
        line += Direction(parameter) + Type(parameter.tdesc);
    }
    return line + ") " + Type(function.elemdescFunc.tdesc) + (texts.help.empty() ? " NO HELP" : "") + "\n";
}

// member, dispid, kind, name, type, flags, help, and one field for each parameter.
std::string FunctionRow(ITypeInfo* info, const FUNCDESC& function) {
    BSTR names[16]{};
    UINT count = 0;
    info->GetNames(function.memid, names, 16, &count);
    const Texts texts = TextsOf(info, function.memid);
    std::string row = "member\t" + std::to_string(function.memid) + "\t" + KindOf(function) + "\t" +
                      texts.name + "\t" + Type(function.elemdescFunc.tdesc) + "\t" +
                      ((function.wFuncFlags & FUNCFLAG_FHIDDEN) != 0 ? "hidden" : "") + "\t" + texts.help;
    for (SHORT i = 0; i < function.cParams; ++i) {
        const ELEMDESC& parameter = function.lprgelemdescParam[i];
        const UINT at = static_cast<UINT>(i) + 1;
        row += "\t" + Direction(parameter) + Type(parameter.tdesc);
        if (at < count) row += " " + Narrow(names[at]);
        if ((parameter.paramdesc.wParamFlags & PARAMFLAG_FHASDEFAULT) != 0) {
            row += " = " + std::to_string(parameter.paramdesc.pparamdescex->varDefaultValue.lVal);
        }
    }
    for (UINT i = 0; i < count; ++i) ::SysFreeString(names[i]);
    return row + "\n";
}

// --- walks

template <class Visit>
void EachValue(ITypeInfo* info, const TYPEATTR& attributes, Visit visit) {
    for (WORD i = 0; attributes.typekind == TKIND_ENUM && i < attributes.cVars; ++i) {
        VARDESC* variable = nullptr;
        info->GetVarDesc(i, &variable);
        visit(TextsOf(info, variable->memid), variable->lpvarValue->lVal);
        info->ReleaseVarDesc(variable);
    }
}

template <class Visit>
void EachFunction(ITypeInfo* info, const TYPEATTR& attributes, Visit visit) {
    for (WORD i = 0; attributes.typekind == TKIND_DISPATCH && i < attributes.cFuncs; ++i) {
        FUNCDESC* function = nullptr;
        info->GetFuncDesc(i, &function);
        if (function->memid < 0x60000000) visit(*function);
        info->ReleaseFuncDesc(function);
    }
}

std::string DefaultInterface(ITypeInfo* info) {
    HREFTYPE reference = 0;
    info->GetRefTypeOfImplType(0, &reference);
    Com<ITypeInfo> implemented;
    info->GetRefTypeInfo(reference, implemented.out());
    return NameOf(implemented.get());
}

const char* KindOf(const TYPEATTR& type) {
    return type.typekind == TKIND_ENUM ? "enum" : type.typekind == TKIND_COCLASS ? "coclass" : "interface";
}

// `first` gives the head of the text from the library's attributes, `visit` the text of each type.
template <class First, class Visit>
std::string EachType(const wchar_t* file, First first, Visit visit) {
    Com<ITypeLib> library;
    if (FAILED(::LoadTypeLibEx(file, REGKIND_NONE, library.out()))) return "cannot load";
    TLIBATTR* attributes = nullptr;
    library->GetLibAttr(&attributes);
    std::string text = first(*attributes);
    library->ReleaseTLibAttr(attributes);
    for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
        Com<ITypeInfo> info;
        library->GetTypeInfo(i, info.out());
        TYPEATTR* type = nullptr;
        info->GetTypeAttr(&type);
        text += visit(info.get(), *type);
        info->ReleaseTypeAttr(type);
    }
    return text;
}

std::string Version(const TLIBATTR& library) {
    return std::to_string(library.wMajorVerNum) + "." + std::to_string(library.wMinorVerNum);
}

}  // namespace

std::string ListTypeLibrary(const wchar_t* file) {
    const auto first = [](const TLIBATTR& library) {
        return "library " + Guid(library.guid) + " " + Version(library) + "\n";
    };
    return EachType(file, first, [](ITypeInfo* info, const TYPEATTR& type) {
        std::string text = std::string(KindOf(type)) + " " + NameOf(info);
        if (type.typekind != TKIND_ENUM) text += " " + Guid(type.guid);
        if ((type.wTypeFlags & TYPEFLAG_FDUAL) != 0) text += " dual";
        text += "\n";
        EachValue(info, type, [&text](const Texts& texts, LONG value) {
            text += "  " + texts.name + " = " + std::to_string(value) + "\n";
        });
        EachFunction(info, type, [&](const FUNCDESC& function) { text += Function(info, function); });
        if (type.typekind == TKIND_COCLASS) text += "  default " + DefaultInterface(info) + "\n";
        return text;
    });
}

std::string ListReference(const wchar_t* file) {
    const auto first = [](const TLIBATTR& library) {
        return "library\t" + Guid(library.guid) + "\t" + Version(library) + "\n";
    };
    return EachType(file, first, [](ITypeInfo* info, const TYPEATTR& type) {
        const Texts own = TextsOf(info, MEMBERID_NIL);
        std::string text =
            std::string(KindOf(type)) + "\t" + own.name + "\t" + Guid(type.guid) + "\t" + own.help;
        if (type.typekind == TKIND_COCLASS) text += "\t" + DefaultInterface(info);
        text += "\n";
        EachValue(info, type, [&text](const Texts& texts, LONG value) {
            text += "value\t" + texts.name + "\t" + std::to_string(value) + "\t" + texts.help + "\n";
        });
        EachFunction(info, type, [&](const FUNCDESC& function) { text += FunctionRow(info, function); });
        return text;
    });
}
