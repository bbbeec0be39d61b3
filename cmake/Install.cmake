# What is installed, and where; ./package makes packages of it. Component "ostrel", so that nothing of the libraries that
# are built along comes with it.
#   Linux: programs and libraries side by side in lib/ostrel, links to the programs in bin
#   Windows: everything that is run side by side at the top
include(GNUInstallDirs)
get_property(languages GLOBAL PROPERTY OSTREL_LANGUAGES)
set(run ostrel-bench Ostrel dbmanager codescrldr ${languages})
if(WIN32)
  list(APPEND run ostrel-workbench)
  set(run_folder .)
  set(document_folder .)
  set(header_folder .)
else()
  set(run_folder lib/ostrel)
  set(document_folder share/doc/ostrel)
  set(header_folder include/ostrel)
  install(CODE "
    set(bin \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/bin\")
    file(MAKE_DIRECTORY \"\${bin}\")
    file(CREATE_LINK ../${run_folder}/ostrel-bench \"\${bin}/ostrel-bench\" SYMBOLIC)" COMPONENT ostrel)
endif()
install(TARGETS ${run} COMPONENT ostrel RUNTIME DESTINATION ${run_folder} LIBRARY DESTINATION ${run_folder})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/sdk COMPONENT ostrel DESTINATION ${header_folder})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples COMPONENT ostrel DESTINATION ${document_folder})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs/ COMPONENT ostrel DESTINATION ${document_folder}/docs)
install(FILES ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/CHANGELOG.md
  COMPONENT ostrel DESTINATION ${document_folder})
