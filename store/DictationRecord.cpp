#include "store/DictationRecord.h"

#include "base/LProfile.h"
#include "base/LText.h"
#include "base/LTrace.h"
#include "store/SettingsKeys.h"

constexpr size_t kNumberDigits = 8;

DictationRecord DictationRecord::Read(const LPath& record) {
    const LProfileSection section(record, RecordKeys::kSection);
    const auto text = [&](const char* key) { return section.Read(key, {}); };
    const auto seconds = [&](const char* key) -> std::optional<int64_t> {
        const std::string value = text(key);
        if (value.empty()) return std::nullopt;
        return LParseInt64(value);
    };
    DictationRecord values;
    values.name = text(RecordKeys::kName.key);
    if (const std::string number = text(RecordKeys::kNumber.key); !number.empty())
        values.number = LParseInt(number);
    values.date = seconds(RecordKeys::kDate);
    if (std::string priority = text(RecordKeys::kPriority.key); !priority.empty()) values.priority = priority;
    values.sendDate = seconds(RecordKeys::kSendDate);
    values.recipient = text(RecordKeys::kRecipient.key);
    values.sendStatus = text(RecordKeys::kSendStatus.key);
    return values;
}

std::string DefaultDictationName(int32_t number) {
    return LFormat("Dictation %.3ld", static_cast<long>(number % 1000));
}

std::optional<int32_t> NumberOfFileName(const LPath& path) {
    const std::string_view name = LSplitPath(path.View()).name;
    if (name.size() != kNumberDigits) return std::nullopt;
    for (char c : name) {
        if (!LIsDigit(c)) return std::nullopt;
    }
    return LParseInt(name);
}

static void WriteOrRemove(const LPath& record, const char* key, const std::string& value) {
    if (value.empty()) {
        LProfile::Delete(record, RecordKeys::kSection, key);
    } else {
        LProfile::Write(record, RecordKeys::kSection, key, value);
    }
}

void WriteSendKeys(const LPath& record, const DictationRecord& values) {
    WriteOrRemove(record, RecordKeys::kSendDate,
                  values.sendDate ? std::to_string(*values.sendDate) : std::string());
    WriteOrRemove(record, RecordKeys::kRecipient.key, values.recipient);
    WriteOrRemove(record, RecordKeys::kSendStatus.key, values.sendStatus);
}

void RepairRecord(const LPath& record, DictationRecord& values, int64_t now) {
    const std::optional<int32_t> number = NumberOfFileName(record);
    if (values.number || !number) return;
    LTrace("RepairRecord record without a number", record.View());
    values.number = number;
    if (values.name.empty()) values.name = DefaultDictationName(*number);
    if (!values.date) values.date = now;
    Settings::Write(record, RecordKeys::kName, values.name);
    Settings::Write(record, RecordKeys::kNumber, *number);
    Settings::WriteSeconds(record, RecordKeys::kSection, RecordKeys::kDate, *values.date);
}
