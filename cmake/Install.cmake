# The installed files, the CMake package, and the Debian package. The installed tree is relocatable.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(SOCA_BUNDLE_DIR ${CMAKE_INSTALL_LIBDIR}/soca)
set(SOCA_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/soca)

# --- headers ------------------------------------------------------------------------------------
# Clients include "soca/Updater.h", which needs nothing else. The other headers are in a folder of
# their own, which is the include path for their names in this project, such as
# "platform/paths/PathDispatcher.h". A client of the bundle links only the platform, so the
# service's interface is part of its headers.

target_sources(
  soca_platform
  PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES
         platform/analyzer/AnalysisResult.h
         platform/analyzer/Analyzer.h
         platform/analyzer/tree/Ast.h
         platform/analyzer/tree/AstDispatcher.h
         platform/analyzer/tree/BodyReader.h
         platform/analyzer/Config.h
         platform/analyzer/Diagnostic.h
         platform/analyzer/tree/NodeKind.h
         platform/analyzer/tree/NodeList.h
         platform/analyzer/tree/NodeVisitor.h
         platform/analyzer/lexer/NumericValue.h
         platform/analyzer/text/KnownFunctions.h
         platform/analyzer/text/SourceText.h
         platform/messages/BaseMsgID.h
         platform/failure/Exception.h
         platform/failure/LegacyErrorChannel.h
         platform/failure/Terminate.h
         platform/messages/MessageCatalog.h
         platform/paths/ClassPathItem.h
         platform/paths/Iri.h
         platform/paths/NativePath.h
         platform/paths/Overlay.h
         platform/paths/PathDispatcher.h
         platform/paths/SourceReader.h
         platform/runtime/Class.h
         platform/runtime/ClassDescription.h
         platform/runtime/ClassTable.h
         platform/runtime/InternedId.h
         platform/runtime/MetaClass.h
         platform/text/Conversions.h
         platform/text/FileText.h
         platform/text/Letters.h
         platform/text/Locale.h
         platform/text/UString.h
  INTERFACE FILE_SET service TYPE HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR}/service/include FILES
            service/include/soca/Updater.h)
target_sources(
  soca_core
  PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES
         model/Extent.h
         model/SourceFile.h
         model/SourcePosition.h
         rules/RuleConversion.h
         rules/RuleFinding.h
         rules/RuleFamilies.h
         service/PlannedClass.h
         service/UpdatePlan.h
         service/UpdaterImpl.h)

target_compile_features(soca_platform INTERFACE cxx_std_20)

# --- targets ------------------------------------------------------------------------------------

set_target_properties(soca_platform PROPERTIES EXPORT_NAME platform)
set_target_properties(soca_core PROPERTIES EXPORT_NAME core)
add_library(soca::platform ALIAS soca_platform)
add_library(soca::core ALIAS soca_core)

# The bundle, and a program that does not contain it, find the library relative to their own place.
# Libraries from an unusual place, such as the component runtime, keep their path.
file(RELATIVE_PATH libraries_from_program ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
set_target_properties(com_orrery_systemobject_analyzer PROPERTIES INSTALL_RPATH "$ORIGIN/.."
                                                                  INSTALL_RPATH_USE_LINK_PATH ON)
if(TARGET soca)
  get_target_property(self_contained soca SOCA_SELF_CONTAINED)
  if(NOT self_contained)
    set_target_properties(soca PROPERTIES INSTALL_RPATH "$ORIGIN/${libraries_from_program}")
  endif()
  install(TARGETS soca)
endif()
if(TARGET soca_manual_files)
  set(manual ${PROJECT_BINARY_DIR}/cli/manual)
  install(FILES ${manual}/soca.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  install(FILES ${manual}/soca.bash RENAME soca
          DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
  install(FILES ${manual}/soca.fish
          DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
  # Debian's zsh does not search the folder of that name below its own.
  install(
    CODE "set(folder site-functions)
          if(CMAKE_INSTALL_PREFIX MATCHES \"/usr$\" AND EXISTS /etc/debian_version)
            set(folder vendor-completions)
          endif()
          file(INSTALL \"${manual}/_soca\"
               DESTINATION
                 \"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_DATADIR}/zsh/\${folder}\")")
endif()
install(
  TARGETS soca_platform soca_core
  EXPORT socaTargets
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/soca
  FILE_SET service DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(TARGETS com_orrery_systemobject_analyzer DESTINATION ${SOCA_BUNDLE_DIR})

# --- the CMake package --------------------------------------------------------------------------

set(SOCA_INSTALLED_BUNDLE
    ${SOCA_BUNDLE_DIR}/${CMAKE_SHARED_MODULE_PREFIX}com_orrery_systemobject_analyzer${CMAKE_SHARED_MODULE_SUFFIX})
configure_package_config_file(
  ${PROJECT_SOURCE_DIR}/cmake/socaConfig.cmake.in ${PROJECT_BINARY_DIR}/socaConfig.cmake
  INSTALL_DESTINATION ${SOCA_PACKAGE_DIR}
  PATH_VARS SOCA_INSTALLED_BUNDLE)
write_basic_package_version_file(
  ${PROJECT_BINARY_DIR}/socaConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/socaConfig.cmake ${PROJECT_BINARY_DIR}/socaConfigVersion.cmake
        DESTINATION ${SOCA_PACKAGE_DIR})
install(EXPORT socaTargets NAMESPACE soca:: DESTINATION ${SOCA_PACKAGE_DIR})
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/NOTICE
        DESTINATION ${CMAKE_INSTALL_DOCDIR})

# --- the Debian package -------------------------------------------------------------------------

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME soca)
set(CPACK_PACKAGE_CONTACT "The soca developers")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Updater for the source files of System object classes")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION devel)
# The dependencies are those of the linked libraries; the package's own library is known here.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
# Loaded at run time when there is a git repository.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "libgit2-1.5")
include(CPack)
