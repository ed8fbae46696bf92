# norvix-hald beside the least that such a service does.
norvix_bench(floor-hal floor_hal.c)
target_compile_definitions(floor-hal PRIVATE _GNU_SOURCE)
target_link_libraries(floor-hal PRIVATE dbus-1 PkgConfig::UDEV)
norvix_bench(bench-hal-caller hal_caller.c)
target_link_libraries(bench-hal-caller PRIVATE dbus-1)
add_dependencies(bench norvix-hald)
