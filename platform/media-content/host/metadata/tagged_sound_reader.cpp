#include "platform/media-content/host/metadata/tagged_sound_reader.h"

#include <taglib/aifffile.h>
#include <taglib/apefile.h>
#include <taglib/asffile.h>
#include <taglib/fileref.h>
#include <taglib/flacfile.h>
#include <taglib/mp4file.h>
#include <taglib/tpropertymap.h>
#include <taglib/trueaudiofile.h>
#include <taglib/wavfile.h>
#include <taglib/wavpackfile.h>

#include <algorithm>
#include <string>

#include "platform/media-content/host/metadata/number_text.h"

namespace media_content {
namespace {

/// A ByteSource as TagLib reads it.
class SourceStream final : public TagLib::IOStream {
public:
    SourceStream(ByteSource& source, const char* name) : source_(source), name_(name) {}

    TagLib::FileName name() const override { return name_; }
    bool readOnly() const override { return true; }
    bool isOpen() const override { return true; }
    long tell() const override { return position_; }
    long length() override { return static_cast<long>(source_.size()); }

    TagLib::ByteVector readBlock(unsigned long length) override {
        const auto position = static_cast<uint64_t>(position_);
        const uint64_t left = position < source_.size() ? source_.size() - position : 0;
        const uint64_t wanted = std::min({uint64_t{length}, left, kLargestBlock});
        TagLib::ByteVector block(static_cast<unsigned int>(wanted));
        const size_t got = wanted > 0 ? source_.read(position, block.data(), wanted) : 0;
        block.resize(static_cast<unsigned int>(got));
        position_ += static_cast<long>(got);
        return block;
    }

    void seek(long offset, Position from) override {
        const long base = from == Beginning ? 0 : from == Current ? position_ : length();
        long target = 0;
        position_ = __builtin_add_overflow(base, offset, &target) ? 0 : std::max(target, 0L);
    }

    void writeBlock(const TagLib::ByteVector&) override {}
    void insert(const TagLib::ByteVector&, unsigned long, unsigned long) override {}
    void removeBlock(unsigned long, unsigned long) override {}
    void truncate(long) override {}

private:
    /// Larger than any cover picture; what a lying length asks for beyond it is not allocated.
    static constexpr uint64_t kLargestBlock = 16U << 20;

    ByteSource& source_;
    const char* name_;
    long position_ = 0;
};

std::string text(const TagLib::String& value) {
    return std::string(trimmed(value.to8Bit(true)));
}

std::string property(const TagLib::PropertyMap& properties, const char* key) {
    const auto found = properties.find(key);
    return found != properties.end() ? text(found->second.toString(", ")) : std::string();
}

/// The digits that a text begins with: "3" of "3/12", "1999" of "1999-05-06".
std::string leading_digits(const std::string& value) {
    return value.substr(0, std::min(value.find_first_not_of("0123456789"), value.size()));
}

void read_tags(TagLib::File& file, MediaRecord& record) {
    // By properties and not by the common tag: of a wave file that tag knows one of two kinds only.
    const TagLib::PropertyMap properties = file.properties();
    record.title = property(properties, "TITLE");
    AudioMetadata& audio = record.audio;
    audio.artist = property(properties, "ARTIST");
    audio.album = property(properties, "ALBUM");
    audio.genre = property(properties, "GENRE");
    audio.composer = property(properties, "COMPOSER");
    audio.copyright = property(properties, "COPYRIGHT");
    audio.recorded_date = property(properties, "DATE");
    audio.year = leading_digits(audio.recorded_date);
    audio.track_number = leading_digits(property(properties, "TRACKNUMBER"));
    record.author = audio.artist;
}

template <typename File>
bool take_bits(const TagLib::File& file, int& bits) {
    const auto* typed = dynamic_cast<const File*>(&file);
    if (typed && typed->audioProperties()) {
        bits = typed->audioProperties()->bitsPerSample();
    }
    return typed != nullptr;
}

int bits_per_sample(const TagLib::File& file) {
    int bits = 0;
    if (const auto* mp4 = dynamic_cast<const TagLib::MP4::File*>(&file)) {
        const auto* properties = mp4->audioProperties();
        // AAC has no bits per sample, whatever its header says.
        return properties && properties->codec() == TagLib::MP4::Properties::ALAC
                   ? properties->bitsPerSample()
                   : 0;
    }
    static_cast<void>(
        take_bits<TagLib::FLAC::File>(file, bits) || take_bits<TagLib::RIFF::WAV::File>(file, bits) ||
        take_bits<TagLib::RIFF::AIFF::File>(file, bits) || take_bits<TagLib::APE::File>(file, bits) ||
        take_bits<TagLib::WavPack::File>(file, bits) || take_bits<TagLib::ASF::File>(file, bits) ||
        take_bits<TagLib::TrueAudio::File>(file, bits));
    return bits;
}

bool read_properties(const TagLib::File& file, AudioMetadata& audio) {
    const TagLib::AudioProperties* properties = file.audioProperties();
    if (!properties || properties->sampleRate() <= 0) {
        return false;
    }
    constexpr int kBitsInKilobit = 1000;
    audio.duration_ms = std::max(properties->lengthInMilliseconds(), 0);
    audio.bit_rate = std::clamp(properties->bitrate(), 0, INT32_MAX / kBitsInKilobit) * kBitsInKilobit;
    audio.sample_rate = properties->sampleRate();
    audio.channels = std::max(properties->channels(), 0);
    audio.bits_per_sample = std::max(bits_per_sample(file), 0);
    return true;
}

}  // namespace

bool read_tagged_sound(ByteSource& source, const char* name, MediaRecord& record) {
    SourceStream stream(source, name);
    const TagLib::FileRef reference(&stream, true, TagLib::AudioProperties::Fast);
    TagLib::File* file = reference.file();
    if (!file || !file->isValid()) {
        return false;
    }
    read_tags(*file, record);
    return read_properties(*file, record.audio);
}

}  // namespace media_content
