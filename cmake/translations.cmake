# Translations are part of the programs, so that these speak wherever they are copied to.

# norvix_translations(VARIABLE PREFIX file.ts...): gives the sources to add to a target. They hold
# ":/translations/NAME.qm" for each NAME.ts, as the resource PREFIX.
find_package(Qt5LinguistTools REQUIRED)
function(norvix_translations variable prefix)
  qt5_add_translation(messages ${ARGN})
  set(resource ${CMAKE_CURRENT_BINARY_DIR}/${prefix}.qrc)
  set(entries "")
  foreach(message ${messages})
    get_filename_component(name ${message} NAME)
    string(APPEND entries "<file alias=\"${name}\">${message}</file>")
  endforeach()
  file(CONFIGURE OUTPUT ${resource} CONTENT
    "<RCC><qresource prefix=\"/translations\">@entries@</qresource></RCC>\n" @ONLY)
  qt5_add_resources(resources ${resource} OPTIONS -no-compress)
  set_source_files_properties(${resources} PROPERTIES SKIP_AUTOGEN ON)
  set(${variable} ${resources} ${messages} PARENT_SCOPE)
endfunction()
