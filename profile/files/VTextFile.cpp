// Text files of the profile store: lines read block by block in the encoding
// the byte-order mark names, text written in the encoding set.
//
// Reading decodes a whole block at once and cuts lines out of the decoded
// text, so a line costs one scan and one string; only lines that cross a
// block edge are assembled in line_. A character split by the block edge (a
// UTF-8 or double-byte sequence, half a UTF-16 unit) is carried over to the
// front of the next block.
#include "VTextFile.h"

#include <algorithm>
#include <cstring>

namespace {

// At most 3 bytes of an incomplete character wait for the next block
// (the first 3 of a 4-byte UTF-8 sequence).
constexpr size_t MaxCarry = 3;
// Written text is collected up to this size before it goes to the file.
constexpr size_t WriteBufferSize = 64 * 1024;
// ReadAll reads pieces of this size.
constexpr size_t ReadAllPieceSize = 64 * 1024;
// Converters take int lengths: long texts are converted in pieces.
constexpr size_t ConvertPieceCharacters = 1 << 20;

struct ByteOrderMark {
    VTextEncoding encoding;
    BYTE bytes[3];
    size_t length;
};

// In the order that detection tries them. (UTF-32 LE's FF FE 00 00 is never
// written and reads as UTF-16 LE, whose mark begins it.)
constexpr ByteOrderMark Marks[] = {
    {TextEncodingUtf8, {0xEF, 0xBB, 0xBF}, 3},
    {TextEncodingUtf16LE, {0xFF, 0xFE, 0}, 2},
    {TextEncodingUtf16BE, {0xFE, 0xFF, 0}, 2},
};

const ByteOrderMark* MarkOf(VTextEncoding encoding) {
    for (const ByteOrderMark& mark : Marks)
        if (mark.encoding == encoding) return &mark;
    return nullptr;
}

bool StartsWith(const BYTE* bytes, size_t size, const ByteOrderMark& mark) {
    return size >= mark.length && std::memcmp(bytes, mark.bytes, mark.length) == 0;
}

// The code page that converts an 8-bit encoding; 0 for the UTF-16 ones and
// for values that name no encoding.
UINT CodePageOf(VTextEncoding encoding) {
    switch (encoding) {
        case TextEncodingAnsi:
            return GetACP();
        case TextEncodingUtf8:
            return CP_UTF8;
        default:
            return 0;
    }
}

bool IsDoubleByte(UINT codePage) {
    CPINFO info;
    return codePage != CP_UTF8 && GetCPInfo(codePage, &info) && info.MaxCharSize == 2;
}

// The number of bytes of the character that lead starts; 0 when lead starts none.
size_t CharacterBytes(UINT codePage, bool doubleByte, BYTE lead) {
    if (codePage == CP_UTF8) {
        if (lead < 0x80) return 1;
        if (lead < 0xC0) return 0;  // a continuation byte
        if (lead < 0xE0) return 2;
        if (lead < 0xF0) return 3;
        return lead < 0xF8 ? 4 : 0;
    }
    return doubleByte && IsDBCSLeadByteEx(codePage, lead) ? 2 : 1;
}

// The length of the longest prefix that ends with a whole character; the
// rest is the start of a character that the next block completes.
size_t CompletePrefix(UINT codePage, bool doubleByte, const BYTE* bytes, size_t size) {
    if (codePage == CP_UTF8) {
        for (size_t back = 1; back <= std::min<size_t>(MaxCarry + 1, size); ++back) {
            const BYTE byte = bytes[size - back];
            if ((byte & 0xC0) != 0x80)
                return CharacterBytes(codePage, false, byte) > back ? size - back : size;
        }
        return size;  // no lead byte near the end: the decoder rejects it
    }
    if (!doubleByte) return size;
    // A trail byte can look like a lead byte, so only a walk from the start
    // tells whether the last byte begins a character.
    size_t position = 0;
    while (position < size) position += IsDBCSLeadByteEx(codePage, bytes[position]) ? 2 : 1;
    return position > size ? size - 1 : size;
}

bool IsHighSurrogate(wchar_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool IsLowSurrogate(wchar_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

// A surrogate without its other half becomes U+FFFD.
void ReplaceLoneSurrogates(wchar_t* text, size_t length) {
    constexpr wchar_t Replacement = 0xFFFD;
    for (size_t i = VTextFile::FindLoneSurrogate(text, length); i < length;
         i = VTextFile::FindLoneSurrogate(text, length, i + 1))
        text[i] = Replacement;
}

}  // namespace

size_t VTextFile::FindLoneSurrogate(const wchar_t* text, size_t length, size_t from) noexcept {
    for (size_t i = from; i < length; ++i) {
        if (IsHighSurrogate(text[i]) && i + 1 < length && IsLowSurrogate(text[i + 1])) {
            ++i;
        } else if (IsHighSurrogate(text[i]) || IsLowSurrogate(text[i])) {
            return i;
        }
    }
    return length;
}

VTextFile::VTextFile() : block_(MaxCarry + BlockSize), decoded_(BlockSize + MaxCarry) {}

VTextFile::~VTextFile() { VTextFile::Close(); }

void VTextFile::ResetReading() noexcept {
    carried_ = 0;
    started_ = false;
    lastWasCR_ = false;
    ended_ = false;
    endError_ = ERROR_HANDLE_EOF;
    decodedLength_ = 0;
    decodedPosition_ = 0;
    line_.clear();
}

bool VTextFile::End(DWORD error) {
    ended_ = true;
    endError_ = error;
    return false;
}

size_t VTextFile::TakeMark(const BYTE* bytes, size_t size, bool atFileStart) {
    if (encoding_ == TextEncodingUnknown) {
        for (const ByteOrderMark& mark : Marks) {
            if (StartsWith(bytes, size, mark)) {
                encoding_ = mark.encoding;
                return mark.length;
            }
        }
        encoding_ = TextEncodingAnsi;
        return 0;
    }
    const ByteOrderMark* own = MarkOf(encoding_);
    return atFileStart && own && StartsWith(bytes, size, *own) ? own->length : 0;
}

bool VTextFile::DecodeMultiByte(const BYTE* bytes, size_t size, wchar_t* out,
                                size_t& length) const {
    length = 0;
    if (size == 0) return true;
    const char* text = reinterpret_cast<const char*>(bytes);
    // Converters take int lengths; the callers' sizes are bounded far below.
    const int capacity = static_cast<int>(size);
    int count = MultiByteToWideChar(codePage_, MB_ERR_INVALID_CHARS, text, static_cast<int>(size),
                                    out, capacity);
    if (count > 0) {
        length = static_cast<size_t>(count);
        return true;
    }
    // Rare: find the first character that does not translate, one at a time,
    // so that the text before it is still delivered.
    size_t good = 0;
    while (good < size) {
        const size_t characterLength = CharacterBytes(codePage_, doubleByte_, bytes[good]);
        wchar_t characters[2];
        if (characterLength == 0 || characterLength > size - good ||
            MultiByteToWideChar(codePage_, MB_ERR_INVALID_CHARS, text + good,
                                static_cast<int>(characterLength), characters, 2) <= 0)
            break;
        good += characterLength;
    }
    count = good == 0 ? 0
                      : MultiByteToWideChar(codePage_, MB_ERR_INVALID_CHARS, text,
                                            static_cast<int>(good), out, capacity);
    length = static_cast<size_t>(std::max(count, 0));
    SetLastError(ERROR_NO_UNICODE_TRANSLATION);
    return false;
}

size_t VTextFile::CompleteLength(const BYTE* bytes, size_t size, bool atEnd) const {
    if (encoding_ == TextEncodingUtf16LE || encoding_ == TextEncodingUtf16BE) {
        size_t complete = size & ~size_t{1};
        // A pair split by the block edge waits for its second half.
        if (!atEnd && complete >= 2) {
            const BYTE* last = bytes + complete - 2;
            const wchar_t unit =
                static_cast<wchar_t>(encoding_ == TextEncodingUtf16LE ? last[0] | (last[1] << 8)
                                                                      : (last[0] << 8) | last[1]);
            if (IsHighSurrogate(unit)) complete -= 2;
        }
        return complete;
    }
    return atEnd ? size : CompletePrefix(codePage_, doubleByte_, bytes, size);
}

bool VTextFile::DecodeWhole(const BYTE* bytes, size_t size, wchar_t* out, size_t& length) const {
    if (encoding_ != TextEncodingUtf16LE && encoding_ != TextEncodingUtf16BE)
        return DecodeMultiByte(bytes, size, out, length);
    length = size / 2;
    if (encoding_ == TextEncodingUtf16LE) {
        std::memcpy(out, bytes, length * sizeof(wchar_t));
    } else {
        for (size_t i = 0; i < length; ++i)
            out[i] = static_cast<wchar_t>((bytes[2 * i] << 8) | bytes[2 * i + 1]);
    }
    ReplaceLoneSurrogates(out, length);
    return true;
}

bool VTextFile::Decode(const BYTE* bytes, size_t size, bool atEnd) {
    decodedPosition_ = 0;
    const size_t complete = CompleteLength(bytes, size, atEnd);
    bool translated = DecodeWhole(bytes, complete, decoded_.data(), decodedLength_);
    // Half a unit at the very end cannot be translated.
    if (atEnd && complete < size) translated = false;
    carried_ = size - complete;
    std::memmove(block_.data(), bytes + complete, carried_);
    return translated;
}

bool VTextFile::Start(const BYTE* bytes, size_t size, uint64_t offset, size_t& markLength) {
    started_ = true;
    markLength = TakeMark(bytes, size, offset == 0);
    codePage_ = CodePageOf(encoding_);
    doubleByte_ = IsDoubleByte(codePage_);
    if (codePage_ == 0 && encoding_ != TextEncodingUtf16LE && encoding_ != TextEncodingUtf16BE) {
        SetLastError(ERROR_NOT_SUPPORTED);
        return false;
    }
    return true;
}

bool VTextFile::FillBlock() {
    for (;;) {
        if (!started_) {
            // Reading starts where the file pointer stands (0 after Open).
            if (!VFile::Seek(0, FILE_CURRENT, &blockOffset_)) return End(GetLastError());
        }
        const uint64_t offset = blockOffset_;
        DWORD got = 0;
        if (blockLocking_ && !Lock(offset, BlockSize, false)) return End(GetLastError());
        const bool read = ReadBytes(block_.data() + carried_, BlockSize, got);
        const DWORD readError = GetLastError();
        if (blockLocking_) VFile::Unlock(offset, BlockSize);
        if (!read) return End(readError);
        blockOffset_ += got;

        size_t start = 0;
        if (!started_ && !Start(block_.data(), got, offset, start)) return End(GetLastError());
        // Fewer bytes than asked is not yet the end: only a read of none is.
        const bool atEnd = got == 0;
        if (!Decode(block_.data() + start, carried_ + got - start, atEnd)) {
            End(ERROR_NO_UNICODE_TRANSLATION);
            return decodedLength_ > 0;
        }
        if (decodedLength_ > 0) return true;
        if (atEnd) return End(ERROR_HANDLE_EOF);
    }
}

bool VTextFile::ReadAll(WipedVector<wchar_t>& text, uint64_t maxBytes) {
    uint64_t position = 0;
    uint64_t size = 0;
    if (!VFile::Seek(0, FILE_CURRENT, &position) || !GetSize(size)) return false;
    const uint64_t left = size > position ? size - position : 0;
    if (left > maxBytes) {
        SetLastError(ERROR_FILE_TOO_LARGE);
        return false;
    }
    // A byte gives at most one character; the text is cut to what it holds.
    text.resize(static_cast<size_t>(left));
    size_t length = 0;
    // Read in pieces through one buffer, small enough to be reused from the
    // heap rather than mapped afresh for every file.
    WipedVector<BYTE> piece(MaxCarry + ReadAllPieceSize);
    size_t carried = 0;
    uint64_t offset = position;
    for (;;) {
        DWORD got = 0;
        if (!ReadBytes(piece.data() + carried, static_cast<DWORD>(ReadAllPieceSize), got))
            return false;
        size_t start = 0;
        if (!started_ && !Start(piece.data() + carried, got, offset, start)) return false;
        offset += got;
        const size_t have = carried + got - start;
        const bool atEnd = got == 0;
        const size_t complete = CompleteLength(piece.data() + start, have, atEnd);
        // More than the file held at first (it grew): the text makes room.
        if (text.size() - length < complete) text.resize(length + complete);
        size_t decoded = 0;
        const bool translated =
            DecodeWhole(piece.data() + start, complete, text.data() + length, decoded);
        length += decoded;
        if (!translated || atEnd) break;
        carried = have - complete;
        std::memmove(piece.data(), piece.data() + start + complete, carried);
        if (offset - position > maxBytes) {
            SetLastError(ERROR_FILE_TOO_LARGE);
            return false;
        }
    }
    text.resize(length);
    ended_ = true;
    return true;
}

namespace {

// Copies the line into the caller's string. A string that is not shared and
// has room keeps its block, so a caller that reads into one variable pays
// for no allocation per line.
void Deliver(VUnicodeString& line, const wchar_t* text, size_t length) {
    if (length == 0) {
        line.Empty();
        return;
    }
    std::memcpy(line.GetBuffer(length), text, length * sizeof(wchar_t));
    line.ReleaseBuffer(length);
}

}  // namespace

bool VTextFile::ReadLine(VUnicodeString& line) {
    for (;;) {
        if (decodedPosition_ == decodedLength_) {
            if (ended_ || !FillBlock()) {
                if (!line_.empty()) {
                    Deliver(line, line_.data(), line_.size());
                    line_.clear();
                    return true;
                }
                SetLastError(endError_);
                return false;
            }
        }
        const wchar_t* begin = decoded_.data() + decodedPosition_;
        const wchar_t* end = decoded_.data() + decodedLength_;
        if (lastWasCR_) {
            lastWasCR_ = false;
            if (*begin == L'\n') {
                ++decodedPosition_;
                continue;
            }
        }
        const wchar_t* stop = begin;
        while (stop < end && (*stop > L'\r' || (*stop != L'\r' && *stop != L'\n'))) ++stop;
        if (stop == end) {
            line_.insert(line_.end(), begin, end);
            decodedPosition_ = decodedLength_;
            continue;
        }
        if (line_.empty()) {
            Deliver(line, begin, static_cast<size_t>(stop - begin));
        } else {
            line_.insert(line_.end(), begin, stop);
            Deliver(line, line_.data(), line_.size());
            line_.clear();
        }
        lastWasCR_ = *stop == L'\r';
        decodedPosition_ = static_cast<size_t>(stop + 1 - decoded_.data());
        return true;
    }
}

bool VTextFile::AppendMultiByte(UINT codePage, const wchar_t* text, size_t length) {
    const size_t before = pending_.size();
    const bool utf8 = codePage == CP_UTF8;
    CPINFO info;
    // A UTF-16 unit becomes at most 3 UTF-8 bytes (a pair of them 4).
    const size_t bytesPerCharacter = utf8 ? 3 : (GetCPInfo(codePage, &info) ? info.MaxCharSize : 2);
    while (length > 0) {
        size_t piece = std::min(length, ConvertPieceCharacters);
        if (piece < length && IS_HIGH_SURROGATE(text[piece - 1])) --piece;  // keep a pair together
        const size_t at = pending_.size();
        const int room = static_cast<int>(piece * bytesPerCharacter);
        pending_.resize(at + static_cast<size_t>(room));
        // Strict either way: a lone surrogate, or a character the code page
        // lacks, fails rather than turning silently into another one.
        BOOL usedDefault = FALSE;
        const int written =
            WideCharToMultiByte(codePage, utf8 ? WC_ERR_INVALID_CHARS : WC_NO_BEST_FIT_CHARS, text,
                                static_cast<int>(piece), pending_.data() + at, room, nullptr,
                                utf8 ? nullptr : &usedDefault);
        if (written <= 0 || usedDefault) {
            const DWORD error = written <= 0 ? GetLastError() : ERROR_NO_UNICODE_TRANSLATION;
            pending_.resize(before);
            SetLastError(error);
            return false;
        }
        pending_.resize(at + static_cast<size_t>(written));
        text += piece;
        length -= piece;
    }
    return true;
}

bool VTextFile::Write(const wchar_t* text, size_t length) {
    switch (encoding_) {
        case TextEncodingAnsi:
        case TextEncodingUtf8:
            if (!AppendMultiByte(CodePageOf(encoding_), text, length)) return false;
            break;
        case TextEncodingUtf16LE:
        case TextEncodingUtf16BE: {
            const size_t at = pending_.size();
            pending_.resize(at + 2 * length);
            char* out = pending_.data() + at;
            const bool bigEndian = encoding_ == TextEncodingUtf16BE;
            for (size_t i = 0; i < length; ++i) {
                out[2 * i + (bigEndian ? 1 : 0)] = static_cast<char>(text[i] & 0xFF);
                out[2 * i + (bigEndian ? 0 : 1)] = static_cast<char>(text[i] >> 8);
            }
            break;
        }
        default:
            SetLastError(ERROR_NOT_SUPPORTED);
            return false;
    }
    return pending_.size() < WriteBufferSize || Flush();
}

bool VTextFile::WriteEncoded(const void* bytes, size_t size) {
    const BYTE* next = static_cast<const BYTE*>(bytes);
    while (size > 0) {
        const DWORD piece = static_cast<DWORD>(std::min<size_t>(size, WriteBufferSize));
        uint64_t position = 0;
        if (blockLocking_ &&
            !(VFile::Seek(0, FILE_CURRENT, &position) && Lock(position, piece, true)))
            return false;
        const bool written = WriteBytes(next, piece);
        const DWORD error = GetLastError();
        const bool unlocked = !blockLocking_ || VFile::Unlock(position, piece);
        if (!written) {
            SetLastError(error);
            return false;
        }
        if (!unlocked) return false;
        next += piece;
        size -= piece;
    }
    return true;
}

bool VTextFile::Flush() {
    const bool written = WriteEncoded(pending_.data(), pending_.size());
    pending_.clear();  // keeps its capacity, and the last error
    return written;
}

bool VTextFile::Truncate(uint64_t position) {
    if (!Flush()) return false;
    ResetReading();
    if (!VFile::Truncate(position)) return false;
    if (encoding_ == TextEncodingUnknown) encoding_ = TextEncodingUtf16LE;
    const ByteOrderMark* mark = MarkOf(encoding_);
    return !mark || WriteEncoded(mark->bytes, mark->length);
}

bool VTextFile::Seek(int64_t distance, DWORD method, uint64_t* newPosition) {
    if (!Flush()) return false;
    ResetReading();
    return VFile::Seek(distance, method, newPosition);
}

bool VTextFile::Unlock(uint64_t offset, uint64_t length) {
    // The lock is released even when the buffered text cannot be written.
    const bool flushed = Flush();
    const DWORD error = GetLastError();
    const bool unlocked = VFile::Unlock(offset, length);
    if (!flushed) SetLastError(error);
    return flushed && unlocked;
}

void VTextFile::Close() noexcept {
    const DWORD error = GetLastError();
    Flush();
    SetLastError(error);
    ResetReading();
    VFile::Close();
}
