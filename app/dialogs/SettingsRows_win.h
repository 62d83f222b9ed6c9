#pragma once

#include <span>
#include <type_traits>
#include <variant>

#include "store/Settings.h"
#include "ui/LControlTable.h"

// Told after a sheet whose rows are not all stored.
inline constexpr char kSettingsNotStored[] =
    "Not all settings could be stored.\n\n"
    "The settings file or your user file may be open in another program or be write-protected, or the disk "
    "may be full. What could not be stored stays as it was.";

// One row of a settings page: a control, and the settings key whose value it edits, of the machine's settings
// or of the user's.
struct SettingsRow {
    enum class Of { Machine, User };

    LControlRow control;
    std::variant<Settings::IntKey, Settings::BoolKey, Settings::TextKey, Settings::LevelKey> key;
    Of of = Of::Machine;
};

// Binds the rows of a settings page to the values of settings files. Thread: the window thread.
class SettingsRows final : public LControlBinding {
public:
    // rows must outlive the object. userFile: that of the rows of the user, if there are any.
    SettingsRows(const LPath& file, std::span<const SettingsRow> rows, const LPath& userFile = {})
        : m_file(file), m_userFile(userFile), m_rows(rows) {}

    // False after a value could not be stored, since the last Retry.
    bool IsStored() const { return m_isStored; }
    void Retry() { m_isStored = true; }

    size_t Count() const override { return m_rows.size(); }
    const LControlRow& Row(size_t row) const override { return m_rows[row].control; }

    LControlValue Read(size_t row) const override {
        return std::visit(
            [&](const auto& key) {
                auto value = Settings::Read(FileOf(row), key);
                if constexpr (std::is_same_v<decltype(value), std::string>)
                    return LControlValue{0, std::move(value)};
                else
                    return LControlValue{value, {}};
            },
            m_rows[row].key);
    }

    void Write(size_t row, const LControlValue& value) override {
        std::visit([&](const auto& key) { WriteKey(FileOf(row), key, value); }, m_rows[row].key);
        // Blanks around a text are not stored.
        const bool isText = m_rows[row].control.kind == LControlRow::Kind::Text;
        m_isStored = m_isStored && (isText || Read(row) == value);
    }

private:
    const LPath& FileOf(size_t row) const {
        return m_rows[row].of == SettingsRow::Of::User ? m_userFile : m_file;
    }

    template <class T>
    void WriteKey(const LPath& file, const Settings::Key<T>& key, const LControlValue& value) {
        if constexpr (std::is_same_v<T, const char*>)
            m_isStored = Settings::Write(file, key, value.text) && m_isStored;
        else
            Settings::Write(file, key, static_cast<T>(value.number));
    }

    LPath m_file;
    LPath m_userFile;
    bool m_isStored = true;
    std::span<const SettingsRow> m_rows;
};
