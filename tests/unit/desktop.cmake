# Tests of the window's parts; no screen is needed for them.

# norvix_desktop_test(name library): desktop/<name>_test.cpp. What only knows values takes
# norvix-desktop-model, what has widgets norvix-desktop-core.
function(norvix_desktop_test name library)
  norvix_unit_test(desktop_${name} desktop/${name}_test.cpp)
  target_link_libraries(unit-desktop_${name} PRIVATE ${library})
  # Whose leak it is shows only in whole stacks.
  set_property(TEST ${kind}.desktop_${name}
    APPEND PROPERTY ENVIRONMENT_MODIFICATION QT_QPA_PLATFORM=set:offscreen
      ASAN_OPTIONS=set:fast_unwind_on_malloc=0
      LSAN_OPTIONS=set:suppressions=${CMAKE_SOURCE_DIR}/tests/lsan.supp)
endfunction()

norvix_desktop_test(connection_model norvix-desktop-model)
norvix_desktop_test(facts norvix-desktop-model)
norvix_desktop_test(headline norvix-desktop-model)
norvix_desktop_test(plot norvix-desktop-core)
norvix_desktop_test(plot_content norvix-desktop-model)
norvix_desktop_test(speed_history norvix-desktop-model)
norvix_desktop_test(assistant norvix-desktop-model)
norvix_desktop_test(caller norvix-desktop-rights)
norvix_desktop_test(deed norvix-desktop-core)
norvix_desktop_test(notice norvix-desktop-model)
norvix_desktop_test(session norvix-desktop-core)

# It speaks as the program does.
norvix_translations(window_sentences desktop_test_translations
  ${CMAKE_SOURCE_DIR}/desktop/translations/norvix-desktop_de.ts
  ${CMAKE_SOURCE_DIR}/desktop/translations/norvix-desktop_en.ts)
norvix_desktop_test(layout norvix-desktop-core)
target_sources(unit-desktop_layout PRIVATE ${window_sentences})
