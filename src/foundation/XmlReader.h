// Reads XML 1.0 piece by piece. A document comes from anyone: depth, size and numbers are bounded, nothing is
// fetched, what a document type declares is passed over and never put in, and nothing here recurses.
#pragma once
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace xml {

struct Limits {
    std::size_t size = std::size_t{16} << 20;  // octets of a document
    std::size_t depth = 256;                   // elements within each other
    std::size_t attributes = 256;              // of one element
};

// Documents are UTF-8, UTF-16 with its mark, or declared as US-ASCII, ISO-8859-1 or Windows-1252; what is no
// UTF-8 becomes U+FFFD. Everything is given in UTF-8.
class Reader {
  public:
    enum class Token { kStart, kEnd, kText, kDone, kFault };
    enum class Fault {
        kNone,
        kCut,       // the document ends too early
        kSyntax,    // no XML, or not well-formed
        kEntity,    // one that is not among the five of XML, or a number that is no character
        kEncoding,  // a character set that is unknown, of a document beyond ASCII
        kTooDeep,
        kTooLarge,
        kTooMany,  // attributes
    };

    // The document has to stay where it is.
    explicit Reader(std::string_view document, Limits limits = {});
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    // The next piece. An element that is empty has a start and an end. Text comes in any number of pieces.
    // After kDone or kFault the same again.
    Token Next();

    // Of a start or an end, with and without the prefix.
    std::string_view Name() const { return name_; }
    std::string_view LocalName() const;
    // Of a text, until the next call.
    std::string_view Text() const { return text_; }
    // Of the present start's attribute with that name, prefix and all.
    std::optional<std::string> Attribute(std::string_view name) const;

    // Elements that are open: one that starts is, one that ends no more.
    std::size_t Depth() const { return open_.size(); }
    Fault WhatIsWrong() const { return fault_; }

  private:
    struct RawAttribute {
        std::string_view name, value;  // as they stand in the document
    };

    bool Fail(Fault fault);
    void TakeCharacters(std::string_view document);
    std::optional<Token> Piece();
    bool TakeText();
    bool TakeCData();
    bool TakeStart();
    bool TakeAttribute();
    bool TakeEnd();
    bool TakeDocumentType();
    bool TakeName(std::string_view& name);
    bool TakeClosing();
    bool SkipBlanks();
    bool SkipPast(std::size_t opening, std::string_view end);
    bool CutOrWrong(std::string_view rest);
    bool SetText(std::string_view raw);

    std::string_view document_;
    std::string converted_;  // the document, when it was not in UTF-8
    Limits limits_;
    std::size_t at_ = 0;
    Fault fault_ = Fault::kNone;
    bool hadRoot_ = false;   // the outermost element has begun
    bool hadType_ = false;   // the document type was there
    bool endIsDue_ = false;  // of the empty element that was given last
    std::string_view name_, text_;
    std::vector<std::string_view> open_;
    std::vector<RawAttribute> attributes_;
    std::string resolved_;  // the text, when it is not as it stands in the document
};

}  // namespace xml
