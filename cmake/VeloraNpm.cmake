# velora_npm_modules(FOLDER FILE): a rule that takes in, below the current build folder, what FOLDER/package-lock.json
# pins; FILE is one of these files. Asks the network only when that was not done yet.
function(velora_npm_modules folder file)
  find_program(NPM npm REQUIRED)
  add_custom_command(
    OUTPUT ${file}
    COMMAND ${CMAKE_COMMAND} -E copy ${folder}/package.json ${folder}/package-lock.json .
    COMMAND ${NPM} ci --ignore-scripts --prefer-offline --no-audit --no-fund --loglevel error
    COMMAND ${CMAKE_COMMAND} -E touch ${file}
    DEPENDS ${folder}/package.json ${folder}/package-lock.json
    WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}
    COMMENT "Taking in the npm packages of ${folder}"
    VERBATIM)
endfunction()
