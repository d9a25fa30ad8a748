# velora_npm_modules(FOLDER FILE): a rule that installs the packages of FOLDER/package-lock.json below the current build
# folder, except those that only checks need. FILE is one of the installed files. It uses the network only if they are
# not installed yet.
function(velora_npm_modules folder file)
  find_program(NPM npm REQUIRED)
  add_custom_command(
    OUTPUT ${file}
    COMMAND ${CMAKE_COMMAND} -E copy ${folder}/package.json ${folder}/package-lock.json .
    COMMAND ${NPM} ci --omit=dev --ignore-scripts --prefer-offline --no-audit --no-fund --loglevel error
    COMMAND ${CMAKE_COMMAND} -E touch ${file}
    DEPENDS ${folder}/package.json ${folder}/package-lock.json
    WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}
    COMMENT "Installing the npm packages of ${folder}"
    VERBATIM)
endfunction()
