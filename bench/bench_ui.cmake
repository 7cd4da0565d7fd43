find_package(Qt6 REQUIRED COMPONENTS Widgets)
target_link_libraries(${name} PRIVATE cuewright_ui)
