#include "media/FFmpegSupport.h"

extern "C" {
#include <libavutil/error.h>
}

namespace cuewright {

namespace {

    std::string describe(const std::string& step, int code)
    {
        char text[AV_ERROR_MAX_STRING_SIZE] = {};
        av_strerror(code, text, sizeof text);
        return step + ": " + text;
    }

} // namespace

MediaError::MediaError(const std::string& step, int code)
    : std::runtime_error(describe(step, code))
    , code(code)
{
}

namespace ffmpeg {

    int check(int code, const char* step)
    {
        if (code < 0)
            throw MediaError(step, code);
        return code;
    }

    FramePtr makeFrame()
    {
        return FramePtr(allocated(av_frame_alloc(), "Could not allocate a frame"));
    }

    PacketPtr makePacket()
    {
        return PacketPtr(allocated(av_packet_alloc(), "Could not allocate a packet"));
    }

    InputPtr openInput(const char* path)
    {
        AVFormatContext* context = nullptr;
        check(avformat_open_input(&context, path, nullptr, nullptr), "Could not open the video");
        InputPtr input(context);
        check(avformat_find_stream_info(context, nullptr), "Could not read the video");
        return input;
    }

} // namespace ffmpeg
} // namespace cuewright
