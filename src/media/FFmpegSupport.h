#pragma once

// Owners for FFmpeg's objects and the one place where its error codes become exceptions.

#include "media/MediaError.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavfilter/avfilter.h>
#include <libavformat/avformat.h>
#include <libavutil/audio_fifo.h>
#include <libavutil/frame.h>
#include <libswresample/swresample.h>
}

#include <memory>

namespace cuewright::ffmpeg {

struct InputDeleter {
    void operator()(AVFormatContext* p) const { avformat_close_input(&p); }
};
struct OutputDeleter {
    void operator()(AVFormatContext* p) const
    {
        if (p && p->pb && !(p->oformat->flags & AVFMT_NOFILE))
            avio_closep(&p->pb);
        avformat_free_context(p);
    }
};
struct CodecDeleter {
    void operator()(AVCodecContext* p) const { avcodec_free_context(&p); }
};
struct FrameDeleter {
    void operator()(AVFrame* p) const { av_frame_free(&p); }
};
struct PacketDeleter {
    void operator()(AVPacket* p) const { av_packet_free(&p); }
};
struct GraphDeleter {
    void operator()(AVFilterGraph* p) const { avfilter_graph_free(&p); }
};
struct InOutDeleter {
    void operator()(AVFilterInOut* p) const { avfilter_inout_free(&p); }
};
struct ResamplerDeleter {
    void operator()(SwrContext* p) const { swr_free(&p); }
};
struct FifoDeleter {
    void operator()(AVAudioFifo* p) const { av_audio_fifo_free(p); }
};

using InputPtr = std::unique_ptr<AVFormatContext, InputDeleter>;
using OutputPtr = std::unique_ptr<AVFormatContext, OutputDeleter>;
using CodecPtr = std::unique_ptr<AVCodecContext, CodecDeleter>;
using FramePtr = std::unique_ptr<AVFrame, FrameDeleter>;
using PacketPtr = std::unique_ptr<AVPacket, PacketDeleter>;
using GraphPtr = std::unique_ptr<AVFilterGraph, GraphDeleter>;
using InOutPtr = std::unique_ptr<AVFilterInOut, InOutDeleter>;
using ResamplerPtr = std::unique_ptr<SwrContext, ResamplerDeleter>;
using FifoPtr = std::unique_ptr<AVAudioFifo, FifoDeleter>;

// Throws MediaError for a negative code; gives the code back otherwise.
int check(int code, const char* step);

// Allocations that fail are out of memory.
template <typename T> T* allocated(T* pointer, const char* step)
{
    if (!pointer)
        check(AVERROR(ENOMEM), step);
    return pointer;
}

FramePtr makeFrame();
PacketPtr makePacket();

// Opens a file for reading with its stream information read.
InputPtr openInput(const char* path);

} // namespace cuewright::ffmpeg
