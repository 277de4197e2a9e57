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

std::string Function(ITypeInfo* info, const FUNCDESC& function) {
    BSTR names[16]{};
    UINT count = 0;
    info->GetNames(function.memid, names, 16, &count);
    std::string line = "  " + std::to_string(function.memid) + " ";
    line += function.invkind == INVOKE_PROPERTYGET   ? "get "
            : function.invkind == INVOKE_PROPERTYPUT ? "put "
                                                     : "method ";
    line += Narrow(names[0]) + "(";
    for (SHORT i = 0; i < function.cParams; ++i) {
        const ELEMDESC& parameter = function.lprgelemdescParam[i];
        const USHORT flags = parameter.paramdesc.wParamFlags;
        if (i > 0) line += ", ";
        if ((flags & PARAMFLAG_FIN) != 0) line += "in ";
        if ((flags & PARAMFLAG_FOUT) != 0) line += "out ";
        if ((flags & PARAMFLAG_FRETVAL) != 0) line += "retval ";
        if ((flags & PARAMFLAG_FOPT) != 0) line += "optional ";
        line += Type(parameter.tdesc);
    }
    for (UINT i = 0; i < count; ++i) ::SysFreeString(names[i]);
    Bstr help;
    info->GetDocumentation(function.memid, nullptr, help.out(), nullptr, nullptr);
    return line + ") " + Type(function.elemdescFunc.tdesc) + (help.str().empty() ? " NO HELP" : "") + "\n";
}

void Members(ITypeInfo* info, const TYPEATTR& attributes, std::string& text) {
    if (attributes.typekind == TKIND_ENUM) {
        for (WORD i = 0; i < attributes.cVars; ++i) {
            VARDESC* variable = nullptr;
            info->GetVarDesc(i, &variable);
            Bstr name;
            info->GetDocumentation(variable->memid, name.out(), nullptr, nullptr, nullptr);
            text += "  " + Narrow(name.str()) + " = " + std::to_string(variable->lpvarValue->lVal) + "\n";
            info->ReleaseVarDesc(variable);
        }
    }
    if (attributes.typekind == TKIND_DISPATCH) {
        for (WORD i = 0; i < attributes.cFuncs; ++i) {
            FUNCDESC* function = nullptr;
            info->GetFuncDesc(i, &function);
            if (function->memid < 0x60000000) text += Function(info, *function);
            info->ReleaseFuncDesc(function);
        }
    }
    if (attributes.typekind == TKIND_COCLASS) {
        HREFTYPE reference = 0;
        info->GetRefTypeOfImplType(0, &reference);
        Com<ITypeInfo> implemented;
        info->GetRefTypeInfo(reference, implemented.out());
        Bstr name;
        implemented->GetDocumentation(MEMBERID_NIL, name.out(), nullptr, nullptr, nullptr);
        text += "  default " + Narrow(name.str()) + "\n";
    }
}

}  // namespace

std::string ListTypeLibrary(const wchar_t* file) {
    Com<ITypeLib> library;
    if (FAILED(::LoadTypeLibEx(file, REGKIND_NONE, library.out()))) return "cannot load";
    TLIBATTR* attributes = nullptr;
    library->GetLibAttr(&attributes);
    std::string text = "library " + Guid(attributes->guid) + " " + std::to_string(attributes->wMajorVerNum) +
                       "." + std::to_string(attributes->wMinorVerNum) + "\n";
    library->ReleaseTLibAttr(attributes);
    for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
        Com<ITypeInfo> info;
        library->GetTypeInfo(i, info.out());
        TYPEATTR* type = nullptr;
        info->GetTypeAttr(&type);
        Bstr name;
        info->GetDocumentation(MEMBERID_NIL, name.out(), nullptr, nullptr, nullptr);
        const char* kind = type->typekind == TKIND_ENUM      ? "enum"
                           : type->typekind == TKIND_COCLASS ? "coclass"
                                                             : "interface";
        text += std::string(kind) + " " + Narrow(name.str());
        if (type->typekind != TKIND_ENUM) text += " " + Guid(type->guid);
        if ((type->wTypeFlags & TYPEFLAG_FDUAL) != 0) text += " dual";
        text += "\n";
        Members(info.get(), *type, text);
        info->ReleaseTypeAttr(type);
    }
    return text;
}
