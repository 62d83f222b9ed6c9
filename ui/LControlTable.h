#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "base/LProfile.h"
#include "ui/LDBEdit.h"

constexpr int32_t kMostSettingBytes = LProfile::kMaxText;  // of a text in a settings file

// What a control edits: a text, or the number behind a tick (0 or 1), a choice, a level in dB or a number
// field.
struct LControlValue {
    int32_t number = 0;
    std::string text;

    bool operator==(const LControlValue&) const = default;
};

struct LRadioButton {
    int control;
    int32_t value;
};

// One row of a page: how a control, or a group of radio buttons, edits its value.
struct LControlRow {
    enum class Kind { Text, Check, Radio, Level, Number, List };

    Kind kind;
    int control;
    int32_t least = 0;  // Number: the smallest that is taken
    int32_t most = 0;   // Number: the largest; Text: the length in bytes
    std::span<const LRadioButton> buttons;

    static constexpr LControlRow Text(int control, int32_t mostBytes = kMostSettingBytes) {
        return {Kind::Text, control, 0, mostBytes, {}};
    }
    static constexpr LControlRow Check(int control) { return {Kind::Check, control, 0, 0, {}}; }
    static constexpr LControlRow Radio(std::span<const LRadioButton> buttons) {
        return {Kind::Radio, buttons.front().control, 0, 0, buttons};
    }
    static constexpr LControlRow Level(int control) { return {Kind::Level, control, 0, 0, {}}; }
    static constexpr LControlRow Number(int control, int32_t least, int32_t most) {
        return {Kind::Number, control, least, most, {}};
    }
    // A drop-down list whose items carry their values: LAddListItem.
    static constexpr LControlRow List(int control) { return {Kind::List, control, 0, 0, {}}; }
};

// The rows of a page and where their values live.
class LControlBinding {
public:
    virtual size_t Count() const = 0;
    virtual const LControlRow& Row(size_t row) const = 0;
    virtual LControlValue Read(size_t row) const = 0;
    virtual void Write(size_t row, const LControlValue& value) = 0;

protected:
    ~LControlBinding() = default;
};

void LAddListItem(HWND list, const char* text, int32_t value);

// The controls of a dialog that edit the values of a binding. A value that no list item or radio button
// stands for shows none of them, and stays until the user chooses one. Only what was changed is judged and
// written.
// Thread: the window thread.
class LControlTable {
public:
    struct Problem {
        int control;
        std::string text;
    };

    explicit LControlTable(LControlBinding& binding) : m_binding(binding) {}

    // Shows the values; the controls exist and their lists are filled.
    void Load(HWND dialog);
    // Whether a notification of a control tells that the user changed a value.
    bool IsChange(int control, int notification) const;
    // The first changed value that cannot be taken, in words for the user. A control that is disabled is not
    // judged; what it cannot hold is then not written.
    std::optional<Problem> FindProblem() const;
    // Writes the changed values.
    void Store();

private:
    bool IsInRange(size_t row, const LControlValue& value) const;
    // Nothing when no button or item is chosen, or what was typed is no number.
    std::optional<LControlValue> Shown(size_t row) const;
    void Show(size_t row, const LControlValue& value);
    std::optional<LControlValue> Changed(size_t row) const;
    HWND Item(int control) const { return GetDlgItem(m_dialog, control); }

    LControlBinding& m_binding;
    HWND m_dialog = nullptr;
    std::vector<std::optional<LControlValue>> m_loaded;  // as the controls showed it
    std::unique_ptr<LDBEdit[]> m_levels;  // one for each row; attached where the row is a level
};
