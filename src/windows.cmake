# SPDX-License-Identifier: GPL-3.0-or-later
# The windows: the files named frm* of every folder, and widgets/, what several of them share. They know the
# engine and Qt, and no adapter.
find_package(Qt6 6.4 REQUIRED COMPONENTS Widgets Svg)
file(GLOB window_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*/frm*.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/*/frm*.h ${CMAKE_CURRENT_SOURCE_DIR}/widgets/*)
add_library(orven_windows STATIC ${window_sources} ${PROJECT_SOURCE_DIR}/assets/icons/orven_icons.qrc)
set_target_properties(orven_windows PROPERTIES AUTOMOC ON AUTORCC ON)
target_link_libraries(orven_windows PUBLIC orven_engine Qt6::Widgets PRIVATE Qt6::Svg orven_warnings)
