#include "foundation/TextFile.h"

#include "foundation/FileReplace.h"
#include "foundation/Hex.h"
#include "foundation/OpenFile.h"
#include "foundation/Text.h"
#include "foundation/UniqueNumber.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace {

// A name with a zero octet in it would be cut there and mean another file.
bool IsName(const std::string& name) { return name.find('\0') == std::string::npos; }

constexpr int kReplaceAttempts = 5;
constexpr std::uint32_t kReplacePause = 20;

// A full disk may show when the buffer is full, or not before the end.
bool Write(File file, const std::function<bool(const TextSink&)>& produce) {
    const bool produced = file && produce([&file](std::string_view text) {
                              return std::fwrite(text.data(), 1, text.size(), file.get()) == text.size();
                          });
    return file && std::fclose(file.release()) == 0 && produced;
}

bool Write(File file, std::string_view text) {
    return Write(std::move(file), [text](const TextSink& sink) { return sink(text); });
}

// Copies one file over another, for a file that cannot be replaced because somebody reads it.
bool CopyInto(const std::string& name, const std::string& from) {
    const File in = OpenNamedFile(from, "rb");
    File out = OpenNamedFile(name, "wb");
    if (!in || !out) return false;
    std::string piece(kTextPiece, '\0');
    bool whole = true;
    while (const std::size_t size = std::fread(piece.data(), 1, piece.size(), in.get())) {
        whole = whole && std::fwrite(piece.data(), 1, size, out.get()) == size;
    }
    return std::fclose(out.release()) == 0 && whole && std::ferror(in.get()) == 0;
}

bool PutInPlace(const std::string& name, const std::string& beside, Clock& clock) {
    for (int attempt = 0; attempt < kReplaceAttempts; ++attempt) {
        if (attempt > 0) clock.Sleep(kReplacePause);
        if (ReplaceFileBy(name, beside)) return true;
    }
    return CopyInto(name, beside);
}

}  // namespace

std::optional<std::string> ReadTextFile(const std::string& name, std::size_t limit) {
    const File file = OpenNamedFile(name, "rb");  // text mode would end at a Ctrl-Z
    if (!file) return std::nullopt;
    std::string text;
    std::array<char, 16384> chunk{};
    while (text.size() < limit) {
        const std::size_t size =
            std::fread(chunk.data(), 1, std::min(chunk.size(), limit - text.size()), file.get());
        if (size == 0) break;
        text.append(chunk.data(), size);
    }
    if (text.empty() && std::ferror(file.get()) != 0) return std::nullopt;  // a folder opens on some systems
    ReplaceAll(text, "\r\n", "\n");
    return text;
}

bool WriteTextFile(const std::string& name, std::string_view text) {
    return Write(OpenNamedFile(name, "wt+"), text);
}

bool ReplaceTextFile(const std::string& name, const std::function<bool(const TextSink&)>& produce,
                     Clock& clock) {
    if (!IsName(name) || !CanReplaceFile(name)) return false;
    std::string beside = name + ".";
    hex::AppendNumber(beside, UniqueNumber());  // two writers of one file do not meet
    beside += ".new";
    File file = OpenNamedFile(beside, "wt+");
    // There is no place beside it, for its name or for its folder.
    if (!file) return Write(OpenNamedFile(name, "wt+"), produce);
    const bool written = Write(std::move(file), produce) && PutInPlace(name, beside, clock);
    (void)std::remove(beside.c_str());
    return written;
}

bool ReadTextPieces(const std::string& name, const std::function<void(std::string_view)>& take,
                    std::size_t pieceSize) {
    const File file = OpenNamedFile(name, "rb");
    if (!file) return false;
    std::string piece;
    bool any = false;
    for (;;) {
        const std::size_t kept = piece.size();  // a carriage return, whose line feed may follow
        piece.resize(kept + pieceSize);
        const std::size_t size = std::fread(&piece[kept], 1, pieceSize, file.get());
        piece.resize(kept + size);
        if (size == 0) break;
        any = true;
        const bool mayGoOn = piece.back() == '\r';
        if (mayGoOn) piece.pop_back();
        ReplaceAll(piece, "\r\n", "\n");
        if (!piece.empty()) take(piece);
        piece.assign(mayGoOn ? 1 : 0, '\r');
    }
    if (!piece.empty()) take(piece);
    return any || std::ferror(file.get()) == 0;  // a folder opens on some systems
}

bool AppendTextFile(const std::string& name, std::string_view text) {
    return Write(OpenNamedFile(name, "at"), text);
}

void RemoveFile(const std::string& name) {
    if (IsName(name)) (void)std::remove(name.c_str());
}
