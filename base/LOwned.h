#pragma once

#include <utility>

// The owner of one platform handle: movable, not copyable; its destructor closes the handle. Traits gives the
// handle's type (Type), its empty value (None) and the call that closes it (Close).
template <class Traits>
class LOwned {
public:
    using Type = typename Traits::Type;

    LOwned() = default;
    explicit LOwned(Type h) : m_h(h) {}
    LOwned(LOwned&& other) noexcept : m_h(other.Release()) {}
    LOwned& operator=(LOwned&& other) noexcept {
        Reset(other.Release());
        return *this;
    }
    LOwned(const LOwned&) = delete;
    LOwned& operator=(const LOwned&) = delete;
    ~LOwned() { Reset(); }

    explicit operator bool() const { return m_h != Traits::None(); }
    Type Get() const { return m_h; }
    Type Release() { return std::exchange(m_h, Traits::None()); }
    void Reset(Type h = Traits::None()) {
        if (Type old = std::exchange(m_h, h); old != Traits::None()) Traits::Close(old);
    }

private:
    Type m_h = Traits::None();
};
