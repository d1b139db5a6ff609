# SPDX-License-Identifier: GPL-3.0-or-later
# Has the speech helper TTS speak the file TEXT into the sound file GREETING, in LANGUAGE.
get_filename_component(folder ${GREETING} DIRECTORY)
file(MAKE_DIRECTORY ${folder})

# A helper built under a sanitizer: what the speech engine leaves behind at its end is not our concern
# here, and ThreadSanitizer cannot place its memory under every address layout.
set(ENV{ASAN_OPTIONS} detect_leaks=0)
set(fixed_layout setarch ${CMAKE_HOST_SYSTEM_PROCESSOR} -R)
execute_process(COMMAND ${fixed_layout} true RESULT_VARIABLE refused OUTPUT_QUIET ERROR_QUIET)
if(NOT refused EQUAL 0)
  set(fixed_layout)
endif()

execute_process(COMMAND ${fixed_layout} ${TTS} -w ${GREETING} ${LANGUAGE} INPUT_FILE ${TEXT} RESULT_VARIABLE failed)
if(NOT failed EQUAL 0)
  message(FATAL_ERROR "The greeting ${GREETING} could not be made (${failed}).")
endif()
