target_link_libraries(${name} PRIVATE cuewright_media)
# The command-line burner that bench/export-vs-ffmpeg and tools/dump-caption-frames drive.
add_executable(burn_cli ${CMAKE_CURRENT_SOURCE_DIR}/burn_cli.cpp)
target_link_libraries(burn_cli PRIVATE cuewright_media)
pkg_check_modules(BURN_AVUTIL REQUIRED IMPORTED_TARGET libavutil)
target_link_libraries(burn_cli PRIVATE PkgConfig::BURN_AVUTIL)
