#include "reading/budgeted_buffer.h"

#include <algorithm>
#include <cstring>

namespace vessa::core {

namespace {

constexpr std::size_t kSeekCost = 16;
constexpr std::size_t kReadsPerByte = 16;
constexpr std::size_t kReadsAtLeast = std::size_t{1} << 16;

} // namespace

std::size_t readingBudget(std::size_t fileBytes) {
    return kReadsAtLeast + kReadsPerByte * fileBytes;
}

BudgetedBuffer::BudgetedBuffer(std::vector<char> bytes, std::size_t budget)
    : bytes_(std::move(bytes)), budget_(budget) {
    moveTo(0);
}

BudgetedBuffer::int_type BudgetedBuffer::underflow() {
    const std::size_t at = position();
    if (left() == 0 || !spend(1))
        return traits_type::eof();
    char* next = bytes_.data() + at;
    setg(bytes_.data(), next, next + 1);
    return traits_type::to_int_type(*next);
}

std::streamsize BudgetedBuffer::xsgetn(char* to, std::streamsize wanted) {
    const std::size_t at = position();
    const std::size_t count =
        std::min(static_cast<std::size_t>(std::max<std::streamsize>(wanted, 0)), left());
    if (count == 0 || !spend(count))
        return 0;
    std::memcpy(to, bytes_.data() + at, count);
    moveTo(at + count);
    return static_cast<std::streamsize>(count);
}

BudgetedBuffer::pos_type BudgetedBuffer::seekoff(off_type offset, std::ios_base::seekdir from,
                                                 std::ios_base::openmode) {
    const auto base = static_cast<off_type>(from == std::ios_base::beg   ? 0
                                            : from == std::ios_base::cur ? position()
                                                                         : bytes_.size());
    const off_type to = base + offset;
    if (to < 0 || to > static_cast<off_type>(bytes_.size()) || !spend(kSeekCost))
        return pos_type(off_type(-1));
    moveTo(static_cast<std::size_t>(to));
    return pos_type(to);
}

BudgetedBuffer::pos_type BudgetedBuffer::seekpos(pos_type to, std::ios_base::openmode mode) {
    return seekoff(off_type(to), std::ios_base::beg, mode);
}

std::streamsize BudgetedBuffer::showmanyc() {
    return static_cast<std::streamsize>(left());
}

std::size_t BudgetedBuffer::position() const {
    return static_cast<std::size_t>(gptr() - bytes_.data());
}

std::size_t BudgetedBuffer::left() const {
    return bytes_.size() - std::min(position(), bytes_.size());
}

void BudgetedBuffer::moveTo(std::size_t at) {
    setg(bytes_.data(), bytes_.data() + at, bytes_.data() + at);
}

bool BudgetedBuffer::spend(std::size_t amount) {
    if (amount > budget_) {
        budget_ = 0;
        return false;
    }
    budget_ -= amount;
    return true;
}

} // namespace vessa::core
