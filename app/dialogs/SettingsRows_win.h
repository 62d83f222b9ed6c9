#pragma once

#include <span>
#include <type_traits>
#include <variant>

#include "store/Settings.h"
#include "ui/LControlTable.h"

// One row of a settings page: a control, and the settings key whose value it edits.
struct SettingsRow {
    LControlRow control;
    std::variant<Settings::IntKey, Settings::BoolKey, Settings::TextKey, Settings::LevelKey> key;
};

// Binds the rows of a settings page to the values of one settings file. Thread: the window thread.
class SettingsRows final : public LControlBinding {
public:
    // rows must outlive the object.
    SettingsRows(const LPath& file, std::span<const SettingsRow> rows) : m_file(file), m_rows(rows) {}

    size_t Count() const override { return m_rows.size(); }
    const LControlRow& Row(size_t row) const override { return m_rows[row].control; }

    LControlValue Read(size_t row) const override {
        return std::visit(
            [this](const auto& key) {
                auto value = Settings::Read(m_file, key);
                if constexpr (std::is_same_v<decltype(value), std::string>)
                    return LControlValue{0, std::move(value)};
                else
                    return LControlValue{value, {}};
            },
            m_rows[row].key);
    }

    void Write(size_t row, const LControlValue& value) override {
        std::visit([&](const auto& key) { WriteKey(key, value); }, m_rows[row].key);
    }

private:
    template <class T>
    void WriteKey(const Settings::Key<T>& key, const LControlValue& value) {
        if constexpr (std::is_same_v<T, const char*>)
            Settings::Write(m_file, key, value.text);
        else
            Settings::Write(m_file, key, static_cast<T>(value.number));
    }

    LPath m_file;
    std::span<const SettingsRow> m_rows;
};
