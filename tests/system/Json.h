#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <type_traits>

// Builds JSON text, one value after the other; commas come by themselves. Texts are bytes of the
// Windows code page: what is not plain ASCII is written as \u00XX, so that every byte arrives.
class Json {
public:
    Json& Open(char bracket) {
        Separate();
        m_text += bracket;
        return *this;
    }
    Json& Close(char bracket) {
        m_text += bracket;
        return *this;
    }
    Json& Key(std::string_view name) {
        Value(name);
        m_text += ':';
        return *this;
    }
    Json& Value(std::string_view text) {
        Separate();
        m_text += '"';
        for (const char c : text) AddEscaped(static_cast<unsigned char>(c));
        m_text += '"';
        return *this;
    }
    Json& Value(bool value) {
        Separate();
        m_text += value ? "true" : "false";
        return *this;
    }
    Json& Value(int64_t value) {
        Separate();
        m_text += std::to_string(value);
        return *this;
    }
    template <class T>
    Json& Member(std::string_view name, const T& value) {
        Key(name);
        if constexpr (std::is_same_v<T, bool>)
            return Value(value);
        else if constexpr (std::is_integral_v<T>)
            return Value(static_cast<int64_t>(value));
        else
            return Value(std::string_view(value));
    }
    // Text that is JSON already.
    Json& Raw(std::string_view json) {
        Separate();
        m_text += json;
        return *this;
    }
    const std::string& Text() const { return m_text; }

private:
    void Separate() {
        if (!m_text.empty() && std::string_view("{[:,").find(m_text.back()) == std::string_view::npos)
            m_text += ',';
    }
    void AddEscaped(unsigned char c) {
        if (c >= 32 && c < 127 && c != '"' && c != '\\') {
            m_text += static_cast<char>(c);
            return;
        }
        char code[8];
        std::snprintf(code, sizeof code, "\\u%04x", c);
        m_text += code;
    }
    std::string m_text;
};
