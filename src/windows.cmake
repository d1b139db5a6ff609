# SPDX-License-Identifier: GPL-3.0-or-later
# The windows: the files named frm* of every folder, and widgets/, what several of them share. They know the
# engine and Qt, and no adapter.
find_package(Qt6 6.4 REQUIRED COMPONENTS Widgets Svg)
file(GLOB window_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*/frm*.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/*/frm*.h ${CMAKE_CURRENT_SOURCE_DIR}/widgets/*)
add_library(orven_windows STATIC ${window_sources} ${PROJECT_SOURCE_DIR}/assets/icons/orven_icons.qrc)
set_target_properties(orven_windows PROPERTIES AUTOMOC ON AUTORCC ON)

# The translations: assets/translations has a file for each language. Qt finds texts of windows by their class. Those of
# the engine (base/words.h) are found without one, in a file of their own; lrelease complains that texts are in it twice.
find_program(LRELEASE lrelease HINTS ${QT6_INSTALL_PREFIX}/${QT6_INSTALL_BINS} REQUIRED)
file(GLOB translations CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/assets/translations/orven_*.ts)
set(released ${CMAKE_CURRENT_BINARY_DIR}/translations)
file(MAKE_DIRECTORY ${released})
foreach(translation ${translations})
  string(REGEX REPLACE ".*/orven_(.*).ts" "\\1" language ${translation})
  set(made ${released}/orven_${language}.qm ${released}/words_${language}.qm)
  add_custom_command(OUTPUT ${made}
    COMMAND ${LRELEASE} -silent ${translation} -qm ${released}/orven_${language}.qm
    COMMAND sed "s,<name>.*</name>,<name>Words</name>," ${translation} > ${released}/words_${language}.ts
    COMMAND ${LRELEASE} -silent ${released}/words_${language}.ts -qm ${released}/words_${language}.qm 2> /dev/null
    DEPENDS ${translation} VERBATIM)
  target_sources(orven_windows PRIVATE ${made})
  string(APPEND listed "<file>orven_${language}.qm</file><file>words_${language}.qm</file>")
endforeach()
file(CONFIGURE OUTPUT ${released}/orven_translations.qrc
  CONTENT "<RCC><qresource prefix=\"/translations\">${listed}</qresource></RCC>\n")
target_sources(orven_windows PRIVATE ${released}/orven_translations.qrc)

target_link_libraries(orven_windows PUBLIC orven_engine Qt6::Widgets PRIVATE Qt6::Svg orven_warnings)
