#include "media/CaptionBurner.h"

#include "core/Uuid.h"
#include "media/CaptionLayerRenderer.h"
#include "media/CaptionOverlay.h"
#include "media/FFmpegSupport.h"

extern "C" {
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
#include <libavutil/display.h>
#include <libavutil/opt.h>
}

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <map>
#include <numeric>
#include <optional>
#include <string>
#include <vector>

namespace cuewright {

namespace {

    const char* description(CaptionBurnerError::Kind kind)
    {
        using Kind = CaptionBurnerError::Kind;
        switch (kind) {
        case Kind::noVideo:
            return "The selected file does not contain video.";
        case Kind::cannotCreateComposition:
            return "The video could not be prepared for caption export.";
        case Kind::cannotCreateExporter:
            return "The captioned video exporter could not be created.";
        case Kind::exportFailed:
            return "The captioned video could not be exported.";
        case Kind::invalidExport:
            break;
        }
        return "The exported video could not be verified as a playable QuickTime file.";
    }

} // namespace

CaptionBurnerError::CaptionBurnerError(Kind kind)
    : std::runtime_error(description(kind))
    , kind(kind)
{
}

namespace CaptionBurner {

    namespace {

        using namespace ffmpeg;
        using Clock = std::chrono::steady_clock;

        double seconds(Clock::duration d)
        {
            return std::chrono::duration<double>(d).count();
        }

        [[noreturn]] void fail(CaptionBurnerError::Kind kind)
        {
            throw CaptionBurnerError(kind);
        }

        // Removes the hidden file on every way out unless it has been renamed into place.
        class TemporaryFile {
        public:
            explicit TemporaryFile(std::filesystem::path path)
                : m_path(std::move(path))
            {
            }
            ~TemporaryFile()
            {
                if (!m_released) {
                    std::error_code ignored;
                    std::filesystem::remove(m_path, ignored);
                }
            }
            TemporaryFile(const TemporaryFile&) = delete;
            TemporaryFile& operator=(const TemporaryFile&) = delete;
            const std::filesystem::path& path() const { return m_path; }
            void release() { m_released = true; }

        private:
            std::filesystem::path m_path;
            bool m_released = false;
        };

        void syncFile(const std::filesystem::path& path, int flags)
        {
            const int fd = ::open(path.c_str(), flags | O_CLOEXEC);
            if (fd < 0)
                return;
            ::fsync(fd);
            ::close(fd);
        }

        // How the source's display matrix turns the picture, as filters and the size they give.
        struct Orientation {
            std::string filters; // empty, or a chain ending in a comma
            int width = 0;
            int height = 0;
            bool swapsSides = false;
        };

        Orientation orientation(const AVStream* stream)
        {
            const int w = stream->codecpar->width;
            const int h = stream->codecpar->height;
            const auto* matrix
                = reinterpret_cast<const int32_t*>(av_stream_get_side_data(stream, AV_PKT_DATA_DISPLAYMATRIX, nullptr));
            if (!matrix)
                return { "", w, h };
            double theta = -std::round(av_display_rotation_get(matrix));
            if (std::isnan(theta))
                return { "", w, h };
            theta -= 360 * std::floor(theta / 360 + 0.9 / 360);
            if (std::abs(theta - 90) < 1)
                return { matrix[3] > 0 ? "transpose=cclock_flip," : "transpose=clock,", h, w, true };
            if (std::abs(theta - 270) < 1)
                return { matrix[3] < 0 ? "transpose=clock_flip," : "transpose=cclock,", h, w, true };
            if (std::abs(theta - 180) < 1) {
                std::string filters;
                if (matrix[0] < 0)
                    filters += "hflip,";
                if (matrix[4] < 0)
                    filters += "vflip,";
                return { filters, w, h };
            }
            if (std::abs(theta) < 1)
                return { matrix[4] < 0 ? "vflip," : "", w, h };
            // Any other angle: the bounding box of the turned picture. Whole degrees in an integer
            // expression, so that no locale's decimal comma reaches the filter parser.
            const double radians = theta * M_PI / 180;
            const int width
                = static_cast<int>(std::lround(std::abs(w * std::cos(radians)) + std::abs(h * std::sin(radians))));
            const int height
                = static_cast<int>(std::lround(std::abs(w * std::sin(radians)) + std::abs(h * std::cos(radians))));
            return { "rotate=PI*" + std::to_string(static_cast<int>(theta)) + "/180:ow=" + std::to_string(width)
                    + ":oh=" + std::to_string(height) + ",",
                width, height };
        }

        YuvMatrix matrixFor(AVColorSpace space, int height)
        {
            switch (space) {
            case AVCOL_SPC_BT709:
                return YuvMatrix::bt709;
            case AVCOL_SPC_BT470BG:
            case AVCOL_SPC_SMPTE170M:
            case AVCOL_SPC_FCC:
            case AVCOL_SPC_SMPTE240M:
                return YuvMatrix::bt601;
            case AVCOL_SPC_BT2020_NCL:
            case AVCOL_SPC_BT2020_CL:
                return YuvMatrix::bt2020;
            default:
                // What players assume for untagged video.
                return height >= 720 ? YuvMatrix::bt709 : YuvMatrix::bt601;
            }
        }

        const AVStream* firstVideoStream(const AVFormatContext* input)
        {
            for (unsigned i = 0; i < input->nb_streams; ++i) {
                const AVStream* stream = input->streams[i];
                // Cover art in audio files is a picture, not a video track.
                if (stream->codecpar->codec_type == AVMEDIA_TYPE_VIDEO
                    && !(stream->disposition & AV_DISPOSITION_ATTACHED_PIC))
                    return stream;
            }
            return nullptr;
        }

        CodecPtr openDecoder(const AVStream* stream)
        {
            const AVCodec* codec = avcodec_find_decoder(stream->codecpar->codec_id);
            if (!codec)
                return nullptr;
            CodecPtr context(allocated(avcodec_alloc_context3(codec), "Could not allocate a decoder"));
            check(avcodec_parameters_to_context(context.get(), stream->codecpar), "Could not prepare a decoder");
            context->pkt_timebase = stream->time_base;
            context->thread_count = 0; // as many as the machine has; decoding must keep up with x264
            check(avcodec_open2(context.get(), codec, nullptr), "Could not open a decoder");
            return context;
        }

        // One audio track of the source, copied as it is or, where MP4 can't hold its codec, made AAC.
        struct AudioTrack {
            int sourceIndex = 0;
            AVStream* output = nullptr;
            AVRational sourceTimeBase {};
            int64_t offset = 0; // the file's start, in the source's time base
            CodecPtr decoder;
            CodecPtr encoder;
            ResamplerPtr resampler;
            FifoPtr fifo;
            std::optional<int64_t> nextPts;
        };

        class Exporter {
        public:
            Exporter(const std::filesystem::path& source, const std::filesystem::path& temporary,
                const CaptionDocument& document, const CaptionStyle& style, ExportStatistics& statistics)
                : m_document(document)
                , m_style(style)
                , m_statistics(statistics)
            {
                m_input = openInput(source.c_str());
                const AVStream* video = firstVideoStream(m_input.get());
                if (!video)
                    fail(CaptionBurnerError::Kind::noVideo);
                m_videoIndex = video->index;
                m_videoTimeBase = video->time_base;

                const int64_t start = m_input->start_time != AV_NOPTS_VALUE ? m_input->start_time : 0;
                m_videoOffset = av_rescale_q(start, AV_TIME_BASE_Q, video->time_base);
                double duration = m_input->duration != AV_NOPTS_VALUE ? m_input->duration / double(AV_TIME_BASE) : 0;
                if (!(duration > 0) && video->duration != AV_NOPTS_VALUE)
                    duration = video->duration * av_q2d(video->time_base);
                m_duration = std::max(duration, 0.001);
                m_frameCount = std::max<int64_t>(0, static_cast<int64_t>(std::ceil(m_duration * framesPerSecond)) + 1);
                while (m_frameCount > 0 && !(static_cast<double>(m_frameCount - 1) / framesPerSecond < m_duration))
                    --m_frameCount;

                m_decoder = openDecoder(video);
                if (!m_decoder)
                    fail(CaptionBurnerError::Kind::cannotCreateComposition);
                const Orientation turned = orientation(video);
                if (turned.width <= 0 || turned.height <= 0)
                    fail(CaptionBurnerError::Kind::cannotCreateComposition);
                m_turn = turned.filters;
                m_swapsSides = turned.swapsSides;
                m_renderSize = { double(turned.width), double(turned.height) };
                // 4:2:0 needs even sides; the picture keeps its size and gains at most one line.
                m_frameWidth = (turned.width + 1) & ~1;
                m_frameHeight = (turned.height + 1) & ~1;
                m_matrix = matrixFor(video->codecpar->color_space, turned.height);
                m_range = video->codecpar->color_range == AVCOL_RANGE_JPEG ? YuvRange::full : YuvRange::limited;

                openOutput(temporary, video, start);
                planCues();
            }

            void run()
            {
                PacketPtr packet = makePacket();
                m_decoded = makeFrame();
                m_lastDecoded = makeFrame();
                m_filtered = makeFrame();
                for (;;) {
                    const int status = av_read_frame(m_input.get(), packet.get());
                    if (status == AVERROR_EOF)
                        break;
                    check(status, "Could not read the video");
                    if (packet->stream_index == m_videoIndex)
                        decodeVideo(packet.get());
                    else if (AudioTrack* track = audioTrack(packet->stream_index))
                        handleAudio(*track, packet.get());
                    av_packet_unref(packet.get());
                }
                decodeVideo(nullptr);
                if (m_graph) {
                    holdLastFrameToEnd();
                    check(av_buffersrc_add_frame(m_source, nullptr), "Could not convert the video");
                    drainFilter();
                }
                encodeVideo(nullptr);
                for (AudioTrack& track : m_audio)
                    if (track.encoder)
                        flushAudio(track);
                check(av_write_trailer(m_output.get()), "Could not finish the captioned video");
                check(avio_closep(&m_output->pb), "Could not finish the captioned video");
            }

        private:
            void openOutput(const std::filesystem::path& temporary, const AVStream* video, int64_t start)
            {
                AVFormatContext* context = nullptr;
                if (avformat_alloc_output_context2(&context, nullptr, "mp4", temporary.c_str()) < 0 || !context)
                    fail(CaptionBurnerError::Kind::cannotCreateExporter);
                m_output.reset(context);

                const AVCodec* x264 = avcodec_find_encoder_by_name("libx264");
                if (!x264)
                    fail(CaptionBurnerError::Kind::cannotCreateExporter);
                m_encoder.reset(allocated(avcodec_alloc_context3(x264), "Could not allocate the encoder"));
                AVCodecContext* e = m_encoder.get();
                e->width = m_frameWidth;
                e->height = m_frameHeight;
                e->pix_fmt = AV_PIX_FMT_YUV420P;
                e->time_base = { 1, framesPerSecond };
                e->framerate = { framesPerSecond, 1 };
                e->sample_aspect_ratio = video->codecpar->sample_aspect_ratio;
                if (m_swapsSides && e->sample_aspect_ratio.num > 0)
                    std::swap(e->sample_aspect_ratio.num, e->sample_aspect_ratio.den);
                e->color_range = video->codecpar->color_range;
                e->color_primaries = video->codecpar->color_primaries;
                e->color_trc = video->codecpar->color_trc;
                e->colorspace = video->codecpar->color_space;
                if (m_output->oformat->flags & AVFMT_GLOBALHEADER)
                    e->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
                AVDictionary* options = nullptr;
                av_dict_set(&options, "preset", "medium", 0);
                av_dict_set(&options, "crf", "18", 0);
                const int opened = avcodec_open2(e, x264, &options);
                av_dict_free(&options);
                if (opened < 0)
                    fail(CaptionBurnerError::Kind::cannotCreateExporter);

                m_videoOut = allocated(avformat_new_stream(m_output.get(), nullptr), "Could not add the video track");
                check(avcodec_parameters_from_context(m_videoOut->codecpar, e), "Could not add the video track");
                m_videoOut->time_base = e->time_base;
                m_videoOut->avg_frame_rate = e->framerate;

                for (unsigned i = 0; i < m_input->nb_streams; ++i) {
                    const AVStream* stream = m_input->streams[i];
                    if (stream->codecpar->codec_type == AVMEDIA_TYPE_AUDIO)
                        addAudio(stream, start);
                }

                check(avio_open(&m_output->pb, temporary.c_str(), AVIO_FLAG_WRITE),
                    "Could not create the captioned video");
                AVDictionary* muxing = nullptr;
                av_dict_set(&muxing, "movflags", "+faststart", 0);
                const int written = avformat_write_header(m_output.get(), &muxing);
                av_dict_free(&muxing);
                check(written, "Could not start the captioned video");
            }

            void addAudio(const AVStream* stream, int64_t start)
            {
                AudioTrack track;
                track.sourceIndex = stream->index;
                track.sourceTimeBase = stream->time_base;
                track.offset = av_rescale_q(start, AV_TIME_BASE_Q, stream->time_base);
                const bool fits
                    = avformat_query_codec(m_output->oformat, stream->codecpar->codec_id, FF_COMPLIANCE_NORMAL) == 1;
                if (!fits) {
                    track.decoder = openDecoder(stream);
                    const AVCodec* aac = avcodec_find_encoder(AV_CODEC_ID_AAC);
                    // A track that can be neither copied nor decoded is skipped, as a track that can't be added.
                    if (!track.decoder || !aac)
                        return;
                    prepareAacEncoder(track, aac);
                }
                track.output = allocated(avformat_new_stream(m_output.get(), nullptr), "Could not add an audio track");
                if (track.encoder) {
                    check(avcodec_parameters_from_context(track.output->codecpar, track.encoder.get()),
                        "Could not add an audio track");
                    track.output->time_base = track.encoder->time_base;
                } else {
                    check(avcodec_parameters_copy(track.output->codecpar, stream->codecpar),
                        "Could not add an audio track");
                    track.output->codecpar->codec_tag = 0;
                    track.output->time_base = stream->time_base;
                }
                track.output->disposition = stream->disposition;
                if (const AVDictionaryEntry* language = av_dict_get(stream->metadata, "language", nullptr, 0))
                    av_dict_set(&track.output->metadata, "language", language->value, 0);
                m_audio.push_back(std::move(track));
            }

            void prepareAacEncoder(AudioTrack& track, const AVCodec* aac)
            {
                const AVCodecContext* d = track.decoder.get();
                track.encoder.reset(allocated(avcodec_alloc_context3(aac), "Could not allocate an audio encoder"));
                AVCodecContext* e = track.encoder.get();
                int rate = d->sample_rate > 0 ? d->sample_rate : 48000;
                if (const int* rates = aac->supported_samplerates) {
                    bool supported = false;
                    for (; *rates; ++rates)
                        supported = supported || *rates == rate;
                    if (!supported)
                        rate = 48000;
                }
                e->sample_rate = rate;
                e->time_base = { 1, rate };
                e->sample_fmt = AV_SAMPLE_FMT_FLTP;
                const int channels = d->ch_layout.nb_channels;
                if (channels > 0 && channels <= 8 && d->ch_layout.order != AV_CHANNEL_ORDER_UNSPEC)
                    check(av_channel_layout_copy(&e->ch_layout, &d->ch_layout), "Could not prepare an audio encoder");
                else
                    av_channel_layout_default(&e->ch_layout, channels > 0 && channels <= 8 ? channels : 2);
                e->bit_rate
                    = 96000 * std::min(e->ch_layout.nb_channels, 2) + 64000 * std::max(0, e->ch_layout.nb_channels - 2);
                if (m_output->oformat->flags & AVFMT_GLOBALHEADER)
                    e->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
                check(avcodec_open2(e, aac, nullptr), "Could not open an audio encoder");

                AVChannelLayout inputLayout {};
                if (d->ch_layout.order != AV_CHANNEL_ORDER_UNSPEC)
                    av_channel_layout_copy(&inputLayout, &d->ch_layout);
                else
                    av_channel_layout_default(&inputLayout, std::max(1, d->ch_layout.nb_channels));
                SwrContext* resampler = nullptr;
                const int made = swr_alloc_set_opts2(&resampler, &e->ch_layout, e->sample_fmt, e->sample_rate,
                    &inputLayout, d->sample_fmt, d->sample_rate, 0, nullptr);
                av_channel_layout_uninit(&inputLayout);
                track.resampler.reset(resampler);
                check(made, "Could not prepare audio conversion");
                check(swr_init(resampler), "Could not prepare audio conversion");
                track.fifo.reset(allocated(av_audio_fifo_alloc(e->sample_fmt, e->ch_layout.nb_channels, e->frame_size),
                    "Could not allocate audio buffers"));
            }

            AudioTrack* audioTrack(int sourceIndex)
            {
                for (AudioTrack& track : m_audio)
                    if (track.sourceIndex == sourceIndex)
                        return &track;
                return nullptr;
            }

            void handleAudio(AudioTrack& track, AVPacket* packet)
            {
                if (!track.encoder) {
                    if (packet->pts != AV_NOPTS_VALUE)
                        packet->pts -= track.offset;
                    if (packet->dts != AV_NOPTS_VALUE)
                        packet->dts -= track.offset;
                    av_packet_rescale_ts(packet, track.sourceTimeBase, track.output->time_base);
                    packet->stream_index = track.output->index;
                    packet->pos = -1;
                    check(av_interleaved_write_frame(m_output.get(), packet), "Could not write the captioned video");
                    return;
                }
                decodeAudio(track, packet);
            }

            void decodeAudio(AudioTrack& track, AVPacket* packet)
            {
                const int sent = avcodec_send_packet(track.decoder.get(), packet);
                if (sent == AVERROR_INVALIDDATA)
                    return; // a damaged packet costs a moment of sound, not the export
                if (sent != AVERROR_EOF)
                    check(sent, "Could not decode the audio");
                AVFrame* frame = m_decoded.get();
                for (;;) {
                    const int status = avcodec_receive_frame(track.decoder.get(), frame);
                    if (status == AVERROR(EAGAIN) || status == AVERROR_EOF)
                        return;
                    check(status, "Could not decode the audio");
                    AVCodecContext* e = track.encoder.get();
                    if (!track.nextPts) {
                        const int64_t pts
                            = frame->best_effort_timestamp != AV_NOPTS_VALUE ? frame->best_effort_timestamp : 0;
                        track.nextPts = std::max<int64_t>(
                            0, av_rescale_q(pts - track.offset, track.sourceTimeBase, e->time_base));
                    }
                    const int capacity = swr_get_out_samples(track.resampler.get(), frame->nb_samples);
                    check(av_audio_fifo_realloc(track.fifo.get(), av_audio_fifo_size(track.fifo.get()) + capacity),
                        "Could not allocate audio buffers");
                    std::vector<uint8_t*> planes(e->ch_layout.nb_channels);
                    FramePtr converted = makeFrame();
                    converted->format = e->sample_fmt;
                    converted->nb_samples = capacity;
                    check(av_channel_layout_copy(&converted->ch_layout, &e->ch_layout), "Could not convert the audio");
                    check(av_frame_get_buffer(converted.get(), 0), "Could not convert the audio");
                    const int samples = check(swr_convert(track.resampler.get(), converted->extended_data, capacity,
                                                  const_cast<const uint8_t**>(frame->extended_data), frame->nb_samples),
                        "Could not convert the audio");
                    av_frame_unref(frame);
                    check(av_audio_fifo_write(
                              track.fifo.get(), reinterpret_cast<void**>(converted->extended_data), samples),
                        "Could not convert the audio");
                    while (av_audio_fifo_size(track.fifo.get()) >= e->frame_size)
                        encodeAudio(track, e->frame_size);
                }
            }

            void encodeAudio(AudioTrack& track, int samples)
            {
                AVCodecContext* e = track.encoder.get();
                FramePtr frame = makeFrame();
                frame->format = e->sample_fmt;
                frame->nb_samples = samples;
                frame->sample_rate = e->sample_rate;
                check(av_channel_layout_copy(&frame->ch_layout, &e->ch_layout), "Could not encode the audio");
                check(av_frame_get_buffer(frame.get(), 0), "Could not encode the audio");
                check(av_audio_fifo_read(track.fifo.get(), reinterpret_cast<void**>(frame->extended_data), samples),
                    "Could not encode the audio");
                frame->pts = track.nextPts.value_or(0);
                track.nextPts = frame->pts + samples;
                check(avcodec_send_frame(e, frame.get()), "Could not encode the audio");
                receivePackets(e, track.output);
            }

            void flushAudio(AudioTrack& track)
            {
                decodeAudio(track, nullptr);
                if (const int rest = av_audio_fifo_size(track.fifo.get()); rest > 0)
                    encodeAudio(track, rest);
                check(avcodec_send_frame(track.encoder.get(), nullptr), "Could not encode the audio");
                receivePackets(track.encoder.get(), track.output);
            }

            void receivePackets(AVCodecContext* encoder, AVStream* stream)
            {
                PacketPtr packet = makePacket();
                for (;;) {
                    const int status = avcodec_receive_packet(encoder, packet.get());
                    if (status == AVERROR(EAGAIN) || status == AVERROR_EOF)
                        return;
                    check(status, "Could not encode the captioned video");
                    av_packet_rescale_ts(packet.get(), encoder->time_base, stream->time_base);
                    packet->stream_index = stream->index;
                    check(av_interleaved_write_frame(m_output.get(), packet.get()),
                        "Could not write the captioned video");
                }
            }

            void decodeVideo(const AVPacket* packet)
            {
                const int sent = avcodec_send_packet(m_decoder.get(), packet);
                if (sent == AVERROR_INVALIDDATA)
                    return;
                if (sent != AVERROR_EOF)
                    check(sent, "Could not decode the video");
                AVFrame* frame = m_decoded.get();
                for (;;) {
                    const int status = avcodec_receive_frame(m_decoder.get(), frame);
                    if (status == AVERROR(EAGAIN) || status == AVERROR_EOF)
                        return;
                    if (status == AVERROR_INVALIDDATA)
                        continue;
                    check(status, "Could not decode the video");
                    int64_t pts = frame->best_effort_timestamp;
                    if (pts == AV_NOPTS_VALUE)
                        pts = m_lastPts ? *m_lastPts + std::max<int64_t>(1, frame->pkt_duration) : m_videoOffset;
                    m_lastPts = pts;
                    frame->pts = pts - m_videoOffset;
                    if (!m_graph)
                        buildFilter(frame);
                    check(av_buffersrc_add_frame_flags(m_source, frame, AV_BUFFERSRC_FLAG_KEEP_REF),
                        "Could not convert the video");
                    av_frame_unref(m_lastDecoded.get());
                    av_frame_move_ref(m_lastDecoded.get(), frame);
                    drainFilter();
                }
            }

            // The picture stays on its last frame until the end of the file, as a player shows it.
            void holdLastFrameToEnd()
            {
                AVFrame* last = m_lastDecoded.get();
                if (!last->buf[0])
                    return;
                const int64_t end = static_cast<int64_t>(std::ceil(m_duration / av_q2d(m_videoTimeBase)));
                if (last->pts >= end)
                    return;
                last->pts = end;
                check(av_buffersrc_add_frame(m_source, last), "Could not convert the video");
            }

            // Upright, 30 frames a second, 8-bit 4:2:0 at the encoder's size.
            void buildFilter(const AVFrame* frame)
            {
                m_graph.reset(allocated(avfilter_graph_alloc(), "Could not allocate the video conversion"));
                const AVRational aspect
                    = frame->sample_aspect_ratio.num > 0 ? frame->sample_aspect_ratio : AVRational { 1, 1 };
                const std::string arguments = "video_size=" + std::to_string(frame->width) + "x"
                    + std::to_string(frame->height) + ":pix_fmt=" + std::to_string(frame->format)
                    + ":time_base=" + std::to_string(m_videoTimeBase.num) + "/" + std::to_string(m_videoTimeBase.den)
                    + ":pixel_aspect=" + std::to_string(aspect.num) + "/" + std::to_string(aspect.den);
                check(avfilter_graph_create_filter(
                          &m_source, avfilter_get_by_name("buffer"), "in", arguments.c_str(), nullptr, m_graph.get()),
                    "Could not prepare the video conversion");
                check(avfilter_graph_create_filter(
                          &m_sink, avfilter_get_by_name("buffersink"), "out", nullptr, nullptr, m_graph.get()),
                    "Could not prepare the video conversion");
                std::string chain = m_turn;
                chain += "fps=" + std::to_string(framesPerSecond) + ":start_time=0";
                chain += ",scale=" + std::to_string(int(m_renderSize.width)) + ":"
                    + std::to_string(int(m_renderSize.height));
                chain += ",format=yuv420p";
                if (m_frameWidth != int(m_renderSize.width) || m_frameHeight != int(m_renderSize.height))
                    chain += ",pad=" + std::to_string(m_frameWidth) + ":" + std::to_string(m_frameHeight);

                InOutPtr outputs(allocated(avfilter_inout_alloc(), "Could not prepare the video conversion"));
                InOutPtr inputs(allocated(avfilter_inout_alloc(), "Could not prepare the video conversion"));
                outputs->name = av_strdup("in");
                outputs->filter_ctx = m_source;
                inputs->name = av_strdup("out");
                inputs->filter_ctx = m_sink;
                AVFilterInOut* in = inputs.release();
                AVFilterInOut* out = outputs.release();
                const int parsed = avfilter_graph_parse_ptr(m_graph.get(), chain.c_str(), &in, &out, nullptr);
                avfilter_inout_free(&in);
                avfilter_inout_free(&out);
                check(parsed, "Could not prepare the video conversion");
                check(avfilter_graph_config(m_graph.get(), nullptr), "Could not prepare the video conversion");
            }

            void drainFilter()
            {
                for (;;) {
                    const int status = av_buffersink_get_frame(m_sink, m_filtered.get());
                    if (status == AVERROR(EAGAIN) || status == AVERROR_EOF)
                        return;
                    check(status, "Could not convert the video");
                    const int64_t n = m_filtered->pts;
                    if (n >= 0 && n < m_frameCount) {
                        check(av_frame_make_writable(m_filtered.get()), "Could not convert the video");
                        composite(n, m_filtered.get());
                        m_filtered->pts = n;
                        m_filtered->pict_type = AV_PICTURE_TYPE_NONE;
                        encodeVideo(m_filtered.get());
                        ++m_statistics.frames;
                    }
                    av_frame_unref(m_filtered.get());
                }
            }

            void encodeVideo(const AVFrame* frame)
            {
                check(avcodec_send_frame(m_encoder.get(), frame), "Could not encode the captioned video");
                receivePackets(m_encoder.get(), m_videoOut);
            }

            // The frames each cue shows on, and the cues in the order in which they first appear.
            void planCues()
            {
                m_ranges.reserve(m_document.cues.size());
                for (const CaptionCue& cue : m_document.cues)
                    m_ranges.push_back(CaptionOverlay::visibleFrames(
                        CaptionOverlay::visibility(cue, m_duration), m_duration, framesPerSecond, m_frameCount));
                m_order.resize(m_ranges.size());
                std::iota(m_order.begin(), m_order.end(), std::size_t { 0 });
                std::stable_sort(m_order.begin(), m_order.end(),
                    [&](std::size_t a, std::size_t b) { return m_ranges[a].first < m_ranges[b].first; });
            }

            void composite(int64_t n, AVFrame* frame)
            {
                const auto layerStart = Clock::now();
                while (m_nextCue < m_order.size() && m_ranges[m_order[m_nextCue]].first <= n) {
                    const std::size_t index = m_order[m_nextCue++];
                    if (m_ranges[index].last > n)
                        m_live.emplace(index,
                            CaptionOverlay::yuvLayer(
                                m_renderer.makeCueLayer(m_document.cues[index], m_style, m_renderSize), m_matrix,
                                m_range));
                }
                std::erase_if(m_live, [&](const auto& entry) { return m_ranges[entry.first].last <= n; });
                const auto blendStart = Clock::now();
                for (const auto& [index, layer] : m_live)
                    CaptionOverlay::blend(layer, frame->data, frame->linesize, frame->width, frame->height);
                const auto end = Clock::now();
                m_statistics.layerSeconds += seconds(blendStart - layerStart);
                m_statistics.compositingSeconds += seconds(end - blendStart);
            }

            const CaptionDocument& m_document;
            const CaptionStyle& m_style;
            ExportStatistics& m_statistics;

            InputPtr m_input;
            OutputPtr m_output;
            CodecPtr m_decoder;
            CodecPtr m_encoder;
            GraphPtr m_graph;
            AVFilterContext* m_source = nullptr;
            AVFilterContext* m_sink = nullptr;
            FramePtr m_decoded;
            FramePtr m_lastDecoded;
            FramePtr m_filtered;
            AVStream* m_videoOut = nullptr;
            std::vector<AudioTrack> m_audio;

            int m_videoIndex = -1;
            AVRational m_videoTimeBase {};
            int64_t m_videoOffset = 0;
            std::optional<int64_t> m_lastPts;
            double m_duration = 0;
            int64_t m_frameCount = 0;
            std::string m_turn;
            bool m_swapsSides = false;
            RenderSize m_renderSize;
            int m_frameWidth = 0;
            int m_frameHeight = 0;
            YuvMatrix m_matrix = YuvMatrix::bt709;
            YuvRange m_range = YuvRange::limited;

            CaptionLayerRenderer m_renderer;
            std::vector<CaptionOverlay::FrameRange> m_ranges; // by document index
            std::vector<std::size_t> m_order;
            std::size_t m_nextCue = 0;
            std::map<std::size_t, YuvLayer> m_live; // keyed by document index, which is the stacking order
        };

    } // namespace

    std::filesystem::path temporaryPath(const std::filesystem::path& destination)
    {
        std::string name(1, '.');
        name.append(destination.stem().string())
            .append(1, '-')
            .append(Uuid::generate().toString())
            .append(".export.mp4");
        return destination.parent_path() / name;
    }

    void exportVideo(const std::filesystem::path& source, const std::filesystem::path& destination,
        const CaptionDocument& document, const CaptionStyle& style, ExportStatistics* statistics)
    {
        const auto started = Clock::now();
        ExportStatistics local;
        ExportStatistics& stats = statistics ? *statistics : local;
        stats = {};
        TemporaryFile temporary(temporaryPath(destination));
        {
            Exporter exporter(source, temporary.path(), document, style, stats);
            exporter.run();
        }
        syncFile(temporary.path(), O_RDONLY);
        validateExport(temporary.path());
        std::filesystem::rename(temporary.path(), destination);
        temporary.release();
        syncFile(destination.parent_path().empty() ? "." : destination.parent_path(), O_RDONLY | O_DIRECTORY);
        stats.totalSeconds = seconds(Clock::now() - started);
    }

    void validateExport(const std::filesystem::path& file)
    {
        using Kind = CaptionBurnerError::Kind;
        InputPtr input = openInput(file.c_str());
        const AVStream* video = firstVideoStream(input.get());
        const double duration = input->duration != AV_NOPTS_VALUE ? input->duration / double(AV_TIME_BASE) : 0;
        if (!video || !std::isfinite(duration) || !(duration > 0))
            fail(Kind::invalidExport);
        CodecPtr decoder;
        try {
            decoder = openDecoder(video);
        } catch (const MediaError&) {
            fail(Kind::invalidExport);
        }
        if (!decoder)
            fail(Kind::invalidExport);

        // One frame near min(half the duration, 0.1 s), within 0.1 s either way.
        const double tolerance = 0.1;
        const double time = std::min(duration / 2, 0.1);
        const double start = input->start_time != AV_NOPTS_VALUE ? input->start_time / double(AV_TIME_BASE) : 0;
        if (av_seek_frame(input.get(), -1, static_cast<int64_t>((start + time) * AV_TIME_BASE), AVSEEK_FLAG_BACKWARD)
            < 0)
            fail(Kind::invalidExport);
        PacketPtr packet = makePacket();
        FramePtr frame = makeFrame();
        const auto frameFits = [&]() {
            const int64_t pts = frame->best_effort_timestamp;
            if (pts == AV_NOPTS_VALUE)
                return true;
            const double at = pts * av_q2d(video->time_base) - start;
            return at >= time - tolerance - 1e-9 && at <= time + tolerance + 1e-9;
        };
        const auto receive = [&]() {
            for (;;) {
                const int status = avcodec_receive_frame(decoder.get(), frame.get());
                if (status < 0)
                    return false;
                if (frameFits())
                    return true;
                av_frame_unref(frame.get());
            }
        };
        bool draining = false;
        while (!draining) {
            const int status = av_read_frame(input.get(), packet.get());
            if (status < 0) {
                draining = true;
                avcodec_send_packet(decoder.get(), nullptr);
            } else if (packet->stream_index == video->index) {
                const int sent = avcodec_send_packet(decoder.get(), packet.get());
                av_packet_unref(packet.get());
                if (sent < 0 && sent != AVERROR(EAGAIN))
                    fail(Kind::invalidExport);
            } else {
                av_packet_unref(packet.get());
                continue;
            }
            if (receive())
                return;
        }
        fail(Kind::invalidExport);
    }

} // namespace CaptionBurner
} // namespace cuewright
