find_package(Qt6 REQUIRED COMPONENTS Gui Widgets)
target_link_libraries(${name} PRIVATE cuewright_ui Qt6::Gui Qt6::Widgets)
