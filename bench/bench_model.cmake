find_package(Qt6 REQUIRED COMPONENTS Core)
target_link_libraries(${name} PRIVATE cuewright_model Qt6::Core)
