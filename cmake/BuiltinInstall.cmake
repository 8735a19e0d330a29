# What `cmake --install` puts in place, and the package that find_package(builtin) reads.
#
# The stand-ins find the installation root as the folder above the one that holds their shared
# objects, and the library looks for bundles under bin/linux64/builtinservices below that root.
# So the libraries go to lib/ itself, never to a multiarch folder, and every bundle keeps the
# folder it has in the build tree.
include_guard(GLOBAL)
include(CMakePackageConfigHelpers)

set(BUILTIN_CONFIG_DIR lib/cmake/builtin)
set(BUILTIN_BUNDLE_DIR bin/linux64/builtinservices)

# The stand-ins, as platform::<name>.
set(platform_targets capabilities engine fl ka log services usm)
foreach(name IN LISTS platform_targets)
  set_target_properties(platform_${name} PROPERTIES EXPORT_NAME ${name})
  install(TARGETS platform_${name} EXPORT builtinPlatformTargets
          LIBRARY DESTINATION lib ARCHIVE DESTINATION lib)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/platform/${name}/include/ DESTINATION include)
endforeach()

# The library, builtin::builtin, with its public headers and those of declare/.
install(TARGETS builtin EXPORT builtinTargets LIBRARY DESTINATION lib)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/builtin/include/ DESTINATION include)

# The reference bundles: each in its own folder with its manifest, and the headers of their
# native classes as bundles::<name>_api, which a module that passes such objects needs.
foreach(name classsystem string)
  set_target_properties(bundle_${name}_api PROPERTIES EXPORT_NAME ${name}_api)
  install(TARGETS bundle_${name}_api EXPORT builtinBundleTargets)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/bundles/${name}/include/ DESTINATION include)
endforeach()
foreach(name classsystem string sample)
  # A bundle's shared objects are found four folders up, in lib/.
  set_target_properties(bundle_${name} PROPERTIES INSTALL_RPATH "$ORIGIN/../../../../lib")
  install(TARGETS bundle_${name} LIBRARY DESTINATION ${BUILTIN_BUNDLE_DIR}/${name})
  install(FILES ${PROJECT_BINARY_DIR}/${BUILTIN_BUNDLE_DIR}/${name}/manifest.json
          DESTINATION ${BUILTIN_BUNDLE_DIR}/${name})
endforeach()

install(TARGETS kcall RUNTIME DESTINATION bin)

install(EXPORT builtinPlatformTargets NAMESPACE platform:: DESTINATION ${BUILTIN_CONFIG_DIR})
install(EXPORT builtinTargets NAMESPACE builtin:: DESTINATION ${BUILTIN_CONFIG_DIR})
install(EXPORT builtinBundleTargets NAMESPACE bundles:: DESTINATION ${BUILTIN_CONFIG_DIR})
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/builtinConfig.cmake.in
  ${PROJECT_BINARY_DIR}/builtinConfig.cmake INSTALL_DESTINATION ${BUILTIN_CONFIG_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/builtinConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/builtinConfig.cmake ${PROJECT_BINARY_DIR}/builtinConfigVersion.cmake
              ${CMAKE_CURRENT_LIST_DIR}/BuiltinModule.cmake
        DESTINATION ${BUILTIN_CONFIG_DIR})
