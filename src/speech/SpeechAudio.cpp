#include "speech/SpeechAudio.h"

#include "core/Uuid.h"
#include "speech/SpeechWave.h"
#include "speech/TranscriptionError.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/channel_layout.h>
#include <libavutil/error.h>
#include <libswresample/swresample.h>
}

#include <cmath>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace cuewright::SpeechAudio {

namespace {

    struct InputRelease {
        void operator()(AVFormatContext* c) const { avformat_close_input(&c); }
    };
    struct CodecRelease {
        void operator()(AVCodecContext* c) const { avcodec_free_context(&c); }
    };
    struct PacketRelease {
        void operator()(AVPacket* p) const { av_packet_free(&p); }
    };
    struct FrameRelease {
        void operator()(AVFrame* f) const { av_frame_free(&f); }
    };
    struct ResamplerRelease {
        void operator()(SwrContext* s) const { swr_free(&s); }
    };

    using Input = std::unique_ptr<AVFormatContext, InputRelease>;
    using Codec = std::unique_ptr<AVCodecContext, CodecRelease>;
    using Resampler = std::unique_ptr<SwrContext, ResamplerRelease>;

    [[noreturn]] void extractionFailed()
    {
        throw TranscriptionError(TranscriptionError::Kind::audioExtractionFailed);
    }

    std::string describe(int code)
    {
        char text[AV_ERROR_MAX_STRING_SIZE] = {};
        av_strerror(code, text, sizeof text);
        return text;
    }

    [[noreturn]] void decodingFailed(int code)
    {
        throw std::runtime_error("The audio track could not be decoded: " + describe(code) + ".");
    }

    // Converts whatever the decoder gives (any rate, layout or sample format, which may change
    // mid-stream) to the recognisers' format.
    class Converter {
    public:
        explicit Converter(SpeechWave::Writer& out)
            : m_out(out)
        {
        }

        void convert(const AVFrame* frame)
        {
            if (!m_resampler || frame->format != m_format || frame->sample_rate != m_rate
                || av_channel_layout_compare(&frame->ch_layout, &m_layout) != 0)
                reset(frame);
            run(const_cast<const uint8_t**>(frame->extended_data), frame->nb_samples);
        }

        void flush()
        {
            if (m_resampler)
                run(nullptr, 0);
        }

        ~Converter() { av_channel_layout_uninit(&m_layout); }

    private:
        SpeechWave::Writer& m_out;
        Resampler m_resampler;
        int m_format = -1;
        int m_rate = 0;
        AVChannelLayout m_layout {};
        std::vector<std::int16_t> m_buffer;

        void reset(const AVFrame* frame)
        {
            flush();
            av_channel_layout_uninit(&m_layout);
            if (frame->ch_layout.order == AV_CHANNEL_ORDER_UNSPEC || frame->ch_layout.nb_channels == 0)
                av_channel_layout_default(&m_layout, std::max(1, frame->ch_layout.nb_channels));
            else if (av_channel_layout_copy(&m_layout, &frame->ch_layout) < 0)
                extractionFailed();
            m_format = frame->format;
            m_rate = frame->sample_rate;

            AVChannelLayout mono = AV_CHANNEL_LAYOUT_MONO;
            SwrContext* resampler = nullptr;
            if (m_rate <= 0
                || swr_alloc_set_opts2(&resampler, &mono, AV_SAMPLE_FMT_S16, SpeechWave::sampleRate, &m_layout,
                       static_cast<AVSampleFormat>(m_format), m_rate, 0, nullptr)
                    < 0)
                extractionFailed();
            m_resampler.reset(resampler);
            if (swr_init(resampler) < 0)
                extractionFailed();
        }

        void run(const uint8_t** input, int count)
        {
            const int room = swr_get_out_samples(m_resampler.get(), count);
            if (room < 0)
                decodingFailed(room);
            m_buffer.resize(static_cast<std::size_t>(room) + 32);
            uint8_t* output = reinterpret_cast<uint8_t*>(m_buffer.data());
            const int made = swr_convert(m_resampler.get(), &output, static_cast<int>(m_buffer.size()), input, count);
            if (made < 0)
                decodingFailed(made);
            m_out.write({ m_buffer.data(), static_cast<std::size_t>(made) });
        }
    };

} // namespace

void writeSpeechWave(const std::filesystem::path& videoPath, const std::filesystem::path& wavePath)
{
    AVFormatContext* opened = nullptr;
    if (avformat_open_input(&opened, videoPath.c_str(), nullptr, nullptr) < 0)
        extractionFailed();
    Input input(opened);
    if (avformat_find_stream_info(input.get(), nullptr) < 0)
        extractionFailed();

    const AVStream* stream = nullptr;
    const AVCodec* decoder = nullptr;
    for (unsigned i = 0; i < input->nb_streams && !stream; ++i) {
        const AVStream* s = input->streams[i];
        if (s->codecpar->codec_type == AVMEDIA_TYPE_AUDIO && (decoder = avcodec_find_decoder(s->codecpar->codec_id)))
            stream = s;
    }
    if (!stream)
        extractionFailed();

    Codec codec(avcodec_alloc_context3(decoder));
    if (!codec || avcodec_parameters_to_context(codec.get(), stream->codecpar) < 0)
        extractionFailed();
    codec->pkt_timebase = stream->time_base;
    if (avcodec_open2(codec.get(), decoder, nullptr) < 0)
        extractionFailed();

    std::unique_ptr<AVPacket, PacketRelease> packet(av_packet_alloc());
    std::unique_ptr<AVFrame, FrameRelease> frame(av_frame_alloc());
    if (!packet || !frame)
        throw std::bad_alloc();

    SpeechWave::Writer out(wavePath);
    Converter converter(out);
    bool first = true;

    auto drain = [&] {
        for (;;) {
            const int status = avcodec_receive_frame(codec.get(), frame.get());
            if (status == AVERROR(EAGAIN) || status == AVERROR_EOF)
                return;
            if (status < 0)
                decodingFailed(status);
            if (first && frame->pts != AV_NOPTS_VALUE) {
                // Word times count from the start of the video, so audio that begins late is
                // preceded by the silence it leaves.
                const double start = double(frame->pts) * av_q2d(stream->time_base);
                if (start > 0.001) {
                    const std::vector<std::int16_t> silence(
                        static_cast<std::size_t>(std::lround(start * SpeechWave::sampleRate)));
                    out.write(silence);
                }
            }
            first = false;
            converter.convert(frame.get());
            av_frame_unref(frame.get());
        }
    };

    for (;;) {
        const int status = av_read_frame(input.get(), packet.get());
        if (status == AVERROR_EOF)
            break;
        if (status < 0)
            decodingFailed(status);
        if (packet->stream_index == stream->index) {
            // A damaged packet costs its few milliseconds of sound, not the whole transcription.
            const int sent = avcodec_send_packet(codec.get(), packet.get());
            if (sent < 0 && sent != AVERROR_INVALIDDATA && sent != AVERROR(EAGAIN))
                decodingFailed(sent);
            drain();
        }
        av_packet_unref(packet.get());
    }
    avcodec_send_packet(codec.get(), nullptr);
    drain();
    converter.flush();
    out.close();
}

std::filesystem::path extractAudio(const std::filesystem::path& videoPath)
{
    const auto folder = std::filesystem::temp_directory_path() / Uuid::generate().toString();
    std::filesystem::create_directories(folder);
    const auto file = folder / "speech.wav";
    writeSpeechWave(videoPath, file);
    return file;
}

} // namespace cuewright::SpeechAudio
