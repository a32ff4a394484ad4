// VTextFile: a line-oriented text file over VFile that detects its encoding
// from the byte-order mark when reading and writes in the encoding it is given.
//
// Every buffer that holds the file's bytes or text is wiped before it is
// freed: profile files hold user names and passwords.
//
// A lone UTF-16 surrogate read from a UTF-16 file becomes U+FFFD, the
// replacement character: no other encoding can hold it, so a text read with
// one could never be written back.
//
// Failures as in VFile: false with the operating system's error code as the
// thread's last error. One thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>

#include "VFile.h"
#include "WipedVector.h"

enum VTextEncoding : uint32_t {
    TextEncodingUnknown = 0,  // not yet known: the first read looks at the mark
    TextEncodingAnsi = 1,     // 8-bit text in the system's ANSI code page, no mark
    TextEncodingUtf8 = 2,     // mark EF BB BF
    TextEncodingUtf16LE = 3,  // mark FF FE
    TextEncodingUtf16BE = 4,  // mark FE FF
};

class VTextFile : public VFile {
public:
    // Files are read in blocks of this many bytes.
    static constexpr size_t BlockSize = 4096;

    VTextFile();
    // Writes what is still buffered; a failure there is lost, so callers that
    // care call Flush first.
    ~VTextFile() override;

    VTextEncoding GetEncoding() const noexcept { return encoding_; }
    // For writing, or to read a file whose encoding is known (its own mark is
    // then still skipped at the start of the file). The encoding stays across
    // Close and Open: set TextEncodingUnknown to read another file by its mark.
    void SetEncoding(VTextEncoding encoding) noexcept { encoding_ = encoding; }

    // When on (the default), every block read is wrapped in a shared lock of
    // its byte range and every block written in an exclusive one. Callers that
    // hold a lock of their own for the whole read or write turn it off.
    void SetBlockLocking(bool on) noexcept { blockLocking_ = on; }
    bool GetBlockLocking() const noexcept { return blockLocking_; }

    // The next line, without its end: a line ends at CR, at LF or at CR LF.
    // On the first read of a file of unknown encoding the mark decides it
    // (UTF-8, then UTF-16 LE, then UTF-16 BE; none: ANSI from the first byte).
    // False when no line is left: at the end of the file (last error
    // ERROR_HANDLE_EOF), at bytes that cannot be translated (last error
    // ERROR_NO_UNICODE_TRANSLATION; the part of the line before them is
    // delivered first), or on a read error (the system's error). Reading does
    // not go on after a false. A last line without end is delivered; an empty
    // remainder is not. Reading starts at the file pointer; do not mix reading
    // and writing without a Seek or Truncate in between. The line is copied
    // into line's own buffer when line does not share it and it has room, so
    // reading every line into one variable allocates little.
    bool ReadLine(VUnicodeString& line);

    // Reads everything from the file pointer to the end at once and decodes it
    // as ReadLine would (the mark decides an unknown encoding): text receives
    // the characters, up to the first bytes that cannot be translated, which
    // end the text. For a file just opened (or after a Seek); do not mix with
    // ReadLine. False on a read error, and with ERROR_FILE_TOO_LARGE, reading
    // nothing, when more than maxBytes are left.
    bool ReadAll(WipedVector<wchar_t>& text, uint64_t maxBytes);

    // Converts text to the file's encoding (UTF-8 or UTF-16 without a mark,
    // ANSI through the system code page) and appends it at the file pointer.
    // A character the encoding cannot hold (for UTF-8 a lone surrogate, for
    // ANSI any character the code page lacks) fails with ERROR_NO_UNICODE_TRANSLATION
    // and writes nothing of this text; an encoding that cannot be written
    // (unknown) fails with ERROR_NOT_SUPPORTED.
    //
    // The bytes are collected in a write buffer and go to the file when it
    // fills, at Flush, Unlock, Seek, Truncate, Close and destruction. A write
    // error of the file may therefore be reported by a later Write or by
    // Flush: check Flush before counting a file as written. Because Unlock
    // writes the buffer first, text written under a lock lands under it.
    bool Write(const VUnicodeString& text) { return Write(text.c_str(), text.GetLength()); }
    bool Write(const wchar_t* text, size_t length);
    bool Flush();

    // Writes the buffered text, drops what was read ahead, ends the file at
    // position and writes the mark of the current encoding there (none for
    // ANSI); an unknown encoding becomes UTF-16 LE first. The INI store
    // truncates at 0.
    bool Truncate(uint64_t position) override;
    // Moving the file pointer writes the buffered text first and drops what
    // was read ahead.
    bool Seek(int64_t distance, DWORD method, uint64_t* newPosition = nullptr) override;
    bool Unlock(uint64_t offset, uint64_t length) override;
    void Close() noexcept override;

    // The position of the first UTF-16 surrogate at or after from that lacks
    // its other half (which only UTF-16 can hold), or length when there is none.
    static size_t FindLoneSurrogate(const wchar_t* text, size_t length, size_t from = 0) noexcept;

private:
    // Reads and decodes the next block; false when reading is over.
    bool FillBlock();
    // Decodes size bytes (the carried ones first) into decoded_ and carries an
    // incomplete last character over; false on untranslatable bytes, with the
    // characters before them decoded.
    bool Decode(const BYTE* bytes, size_t size, bool atEnd);
    // The number of leading bytes that make whole characters; the rest begins
    // a character that more bytes complete (none are left at the end).
    size_t CompleteLength(const BYTE* bytes, size_t size, bool atEnd) const;
    // Decodes size bytes of whole characters into out (room for size
    // characters); length receives the count. False on untranslatable bytes,
    // with the characters before them decoded.
    bool DecodeWhole(const BYTE* bytes, size_t size, wchar_t* out, size_t& length) const;
    bool DecodeMultiByte(const BYTE* bytes, size_t size, wchar_t* out, size_t& length) const;
    // Settles the encoding from the mark (or skips the known encoding's own
    // mark at the start of the file) and the code page that goes with it; the
    // number of mark bytes. False (ERROR_NOT_SUPPORTED) for an encoding that
    // cannot be read.
    bool Start(const BYTE* bytes, size_t size, uint64_t offset, size_t& markLength);
    size_t TakeMark(const BYTE* bytes, size_t size, bool atFileStart);
    bool End(DWORD error);
    void ResetReading() noexcept;
    bool AppendMultiByte(UINT codePage, const wchar_t* text, size_t length);
    // Writes bytes at the file pointer, locked exclusively block by block
    // when block locking is on.
    bool WriteEncoded(const void* bytes, size_t size);

    VTextEncoding encoding_ = TextEncodingUnknown;
    bool blockLocking_ = true;

    // Reading: the raw bytes of the current block (after up to 3 bytes
    // carried from the block before, an incomplete character), the decoded
    // text of the block and the line being assembled across block edges.
    WipedVector<BYTE> block_;
    size_t carried_ = 0;
    uint64_t blockOffset_ = 0;  // file offset of the next block
    UINT codePage_ = 0;         // of the 8-bit encodings
    bool doubleByte_ = false;   // the code page has lead bytes
    bool started_ = false;      // the mark has been looked at
    bool lastWasCR_ = false;    // an LF right after it is skipped
    bool ended_ = false;        // no block will be read any more
    DWORD endError_ = ERROR_HANDLE_EOF;
    WipedVector<wchar_t> decoded_;
    size_t decodedLength_ = 0;
    size_t decodedPosition_ = 0;
    WipedVector<wchar_t> line_;

    // Writing: converted bytes not yet written.
    WipedVector<char> pending_;
};
