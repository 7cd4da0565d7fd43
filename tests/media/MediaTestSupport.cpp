#include "MediaTestSupport.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/imgutils.h>
#include <libswscale/swscale.h>
}

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <memory>
#include <stdexcept>

namespace cuewright::test {

ScratchFolder::ScratchFolder()
{
    static std::atomic<int> counter { 0 };
    m_path = std::filesystem::temp_directory_path()
        / ("cuewright-media-" + std::to_string(::getpid()) + "-" + std::to_string(counter++));
    std::filesystem::create_directories(m_path);
}

ScratchFolder::~ScratchFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

std::vector<std::string> ScratchFolder::entries() const
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(m_path))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

void makeMedia(const std::string& arguments, const std::filesystem::path& output)
{
    const std::string command = "ffmpeg -nostdin -v error -y " + arguments + " '" + output.string() + "'";
    if (std::system(command.c_str()) != 0)
        throw std::runtime_error("ffmpeg failed: " + command);
}

namespace {

    struct Input {
        AVFormatContext* context = nullptr;
        explicit Input(const std::filesystem::path& file)
        {
            if (avformat_open_input(&context, file.c_str(), nullptr, nullptr) < 0
                || avformat_find_stream_info(context, nullptr) < 0)
                throw std::runtime_error("cannot open " + file.string());
        }
        ~Input() { avformat_close_input(&context); }
    };

} // namespace

MediaInfo probe(const std::filesystem::path& file)
{
    Input input(file);
    MediaInfo info;
    info.durationSeconds = input.context->duration / double(AV_TIME_BASE);
    for (unsigned i = 0; i < input.context->nb_streams; ++i) {
        const AVStream* stream = input.context->streams[i];
        if (stream->codecpar->codec_type == AVMEDIA_TYPE_VIDEO) {
            if (info.videoStreams++ == 0) {
                info.width = stream->codecpar->width;
                info.height = stream->codecpar->height;
                info.frameRate = av_q2d(stream->avg_frame_rate);
            }
        } else if (stream->codecpar->codec_type == AVMEDIA_TYPE_AUDIO) {
            info.audioCodecs.push_back(avcodec_get_name(stream->codecpar->codec_id));
        }
    }
    return info;
}

std::vector<RgbFrame> decodeFrames(const std::filesystem::path& file)
{
    Input input(file);
    const int index = av_find_best_stream(input.context, AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (index < 0)
        throw std::runtime_error("no video in " + file.string());
    const AVStream* stream = input.context->streams[index];
    const AVCodec* codec = avcodec_find_decoder(stream->codecpar->codec_id);
    std::unique_ptr<AVCodecContext, void (*)(AVCodecContext*)> decoder(
        avcodec_alloc_context3(codec), [](AVCodecContext* c) { avcodec_free_context(&c); });
    avcodec_parameters_to_context(decoder.get(), stream->codecpar);
    if (avcodec_open2(decoder.get(), codec, nullptr) < 0)
        throw std::runtime_error("cannot decode " + file.string());
    AVPacket* packet = av_packet_alloc();
    AVFrame* frame = av_frame_alloc();
    SwsContext* scaler = nullptr;
    std::vector<RgbFrame> frames;
    const auto receive = [&]() {
        while (avcodec_receive_frame(decoder.get(), frame) == 0) {
            RgbFrame out;
            out.width = frame->width;
            out.height = frame->height;
            out.seconds = frame->best_effort_timestamp * av_q2d(stream->time_base);
            out.rgb.resize(static_cast<std::size_t>(out.width) * out.height * 3);
            scaler = sws_getCachedContext(scaler, frame->width, frame->height, AVPixelFormat(frame->format),
                frame->width, frame->height, AV_PIX_FMT_RGB24, SWS_POINT, nullptr, nullptr, nullptr);
            uint8_t* planes[1] = { out.rgb.data() };
            const int linesizes[1] = { out.width * 3 };
            sws_scale(scaler, frame->data, frame->linesize, 0, frame->height, planes, linesizes);
            frames.push_back(std::move(out));
            av_frame_unref(frame);
        }
    };
    while (av_read_frame(input.context, packet) >= 0) {
        if (packet->stream_index == index) {
            avcodec_send_packet(decoder.get(), packet);
            receive();
        }
        av_packet_unref(packet);
    }
    avcodec_send_packet(decoder.get(), nullptr);
    receive();
    sws_freeContext(scaler);
    av_frame_free(&frame);
    av_packet_free(&packet);
    std::sort(frames.begin(), frames.end(), [](const RgbFrame& a, const RgbFrame& b) { return a.seconds < b.seconds; });
    return frames;
}

int distance(RgbFrame::Pixel a, RgbFrame::Pixel b)
{
    return std::max({ std::abs(a.r - b.r), std::abs(a.g - b.g), std::abs(a.b - b.b) });
}

} // namespace cuewright::test
