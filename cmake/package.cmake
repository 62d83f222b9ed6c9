# What is installed with the program, and the package of it all.

# The manual, which F1 opens, lies beside the program.
set(manual ${CMAKE_SOURCE_DIR}/docs/manual)
configure_file(${manual}/corvane.htm ${CMAKE_BINARY_DIR}/corvane.htm @ONLY)
file(GLOB pictures CONFIGURE_DEPENDS RELATIVE ${manual} ${manual}/*.png)
foreach(picture IN LISTS pictures)
    add_custom_command(OUTPUT ${CMAKE_BINARY_DIR}/${picture} DEPENDS ${manual}/${picture}
        COMMAND ${CMAKE_COMMAND} -E copy ${manual}/${picture} ${CMAKE_BINARY_DIR}/${picture})
    list(APPEND copies ${CMAKE_BINARY_DIR}/${picture})
endforeach()
add_custom_target(corvane_manual DEPENDS ${copies})
add_dependencies(corvane corvane_manual)

# With the line ends that every Windows editor shows.
configure_file(${CMAKE_SOURCE_DIR}/install/readme.txt ${CMAKE_BINARY_DIR}/readme.txt @ONLY NEWLINE_STYLE DOS)
configure_file(${CMAKE_SOURCE_DIR}/docs/file-formats.md ${CMAKE_BINARY_DIR}/file-formats.txt @ONLY NEWLINE_STYLE DOS)

# Made each time: its times are those of the commit, which no file tells.
add_custom_target(setup ${CMAKE_SOURCE_DIR}/tools/make-setup --build ${CMAKE_BINARY_DIR} DEPENDS corvane VERBATIM)
