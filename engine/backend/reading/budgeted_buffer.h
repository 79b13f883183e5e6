#pragma once

#include <cstddef>
#include <streambuf>
#include <vector>

namespace vessa::core {

// A file's bytes as a stream that gives out only so much reading (a seek
// costs too): a reader that goes round in circles on damaged data (lib3ds
// does) runs out of bytes and stops in milliseconds, long before any time
// limit. Used by the reader program only.
// What a file of this many bytes may be read: each byte about once is
// enough for a well-formed file; this is plenty.
std::size_t readingBudget(std::size_t fileBytes);

class BudgetedBuffer : public std::streambuf {
public:
    BudgetedBuffer(std::vector<char> bytes, std::size_t budget);

protected:
    int_type underflow() override;
    std::streamsize xsgetn(char* to, std::streamsize wanted) override;
    pos_type seekoff(off_type offset, std::ios_base::seekdir from,
                     std::ios_base::openmode mode) override;
    pos_type seekpos(pos_type to, std::ios_base::openmode mode) override;
    std::streamsize showmanyc() override;

private:
    std::size_t position() const;
    std::size_t left() const;
    void moveTo(std::size_t at);
    bool spend(std::size_t amount);

    std::vector<char> bytes_;
    std::size_t budget_;
};

} // namespace vessa::core
