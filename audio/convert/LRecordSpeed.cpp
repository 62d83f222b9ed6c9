#include "audio/convert/LRecordSpeed.h"

#include "audio/convert/LSinkConvertRate.h"
#include "base/LTrace.h"

LSoundSink LRecordSpeed::OpenSink(int32_t percent, const LSoundSink& sink) {
    if (percent == 100) return sink;
    if (percent < 1) {
        LTrace("LRecordSpeed::OpenSink Percent==0");
        return {};
    }
    if (!sink) return {};
    const int32_t captureRate = sink->GetSampleRate() < 11026 ? 22050 : 44100;
    const int32_t apparentRate = captureRate * 100 / percent;
    return LSoundSink::Make<LRecordSpeed>(LSinkConvertRateBase::OpenSink(sink, apparentRate), captureRate);
}
