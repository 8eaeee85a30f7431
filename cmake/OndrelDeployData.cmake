# ondrel_deploy_data(target): puts the library's icons, style sheets and profiles into the folder "data" beside the
# executable, where the library looks for them.
function(ondrel_deploy_data target)
  add_custom_command(TARGET ${target} POST_BUILD
    COMMAND ${CMAKE_COMMAND} -E copy_directory "${ONDREL_DATA_DIR}" "$<TARGET_FILE_DIR:${target}>/data" VERBATIM)
endfunction()
