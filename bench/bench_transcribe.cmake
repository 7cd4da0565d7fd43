target_link_libraries(${name} PRIVATE cuewright_speech)
# The command-line transcriber that bench/transcribe-rtf times against ffmpeg's asr filter.
add_executable(transcribe_rtf_helper ${CMAKE_CURRENT_SOURCE_DIR}/transcribe_rtf_helper.cpp)
target_link_libraries(transcribe_rtf_helper PRIVATE cuewright_speech)
