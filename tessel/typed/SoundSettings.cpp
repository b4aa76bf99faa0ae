#include "SoundSettings.h"

#include "DocumentValues.h"
#include "RequiredRow.h"
#include "ValueReaders.h"

#include <tessel/document/settings/Idents.h>

namespace tessel::typed {

using document::DocumentEditor;

void ApplyTone(const TypedValues& values, DocumentEditor& document)
{
    const Tone tone = ReadTone(values.front());
    document.Set("mToneFormat", IntegerValue(0));
    document.Set("mSteadyToneFrequency", FloatValue(tone.frequency));
    document.Set("mSteadyToneAmplitude", FloatValue(tone.amplitude));
}

std::optional<std::string> RemarkOnTone(const TypedValues& values)
{
    if (const Tone tone = ReadTone(values.front()); tone.amplitude > 1.0F) {
        return values.front() + " is louder than full scale: integer samples will be clipped";
    }
    return std::nullopt;
}

void ApplyIdent(const TypedValues& values, DocumentEditor& document)
{
    const document::Ident& ident = RequiredRow(document::AllIdents(), values.front());
    document.Set("mToneFormat", IntegerValue(1));
    document.Set("mIdentifierFormat", IntegerValue(ident.format));
    document.Set("mKsAudioChannelType", IntegerValue(ident.channelType));
    document.Set("mNumChannels", IntegerValue(ident.channelCount));
}

void ApplyChannels(const TypedValues& values, DocumentEditor& document)
{
    const int count = ReadChannelCount(values.front());
    constexpr int kSurroundCount = 6;
    document.Set("mNumChannels", IntegerValue(count));
    // More than six channels keep the layout that an identification has chosen.
    if (count <= kSurroundCount) {
        document.Set("mKsAudioChannelType", IntegerValue(count == kSurroundCount ? document::kSurroundChannels
                                                                                 : document::kStereoChannels));
    }
}

void ApplySampleRate(const TypedValues& values, DocumentEditor& document)
{
    document.Set("mSampleRate", FloatValue(static_cast<float>(ReadPositive(values.front()))));
}

} // namespace tessel::typed
