# The Java bridge: native methods in the library, and a jar with the class that declares them. It takes a JDK.

set(TLVFORGE_JAVA_FOUND FALSE)
if(TLVFORGE_JAVA)
    find_package(Java 17 QUIET COMPONENTS Development)
    if(Java_FOUND)
        # The headers that belong to the compiler, wherever it was linked from.
        file(REAL_PATH ${Java_JAVAC_EXECUTABLE} home)
        cmake_path(GET home PARENT_PATH home)
        cmake_path(GET home PARENT_PATH home)
        find_path(TLVFORGE_JNI_H jni.h PATHS ${home}/include NO_DEFAULT_PATH)
        find_path(TLVFORGE_JNI_MD_H jni_md.h PATHS ${home}/include/linux NO_DEFAULT_PATH)
    endif()
    if(TLVFORGE_JNI_H AND TLVFORGE_JNI_MD_H)
        set(TLVFORGE_JAVA_FOUND TRUE)
    else()
        message(WARNING "The Java bridge is left out: there is no JDK of version 17 or later. "
            "On Debian: apt-get install default-jdk-headless; elsewhere, JAVA_HOME tells where it lies.")
    endif()
endif()

set(TLVFORGE_NATIVES_TABLE ${PROJECT_SOURCE_DIR}/src/java/natives.cpp)

# Sets `symbols` to the exported names of all native methods, which are what the table's rows say; to nothing without
# the bridge.
function(tlvforge_native_symbols symbols)
    set(${symbols} "" PARENT_SCOPE)
    if(NOT TLVFORGE_JAVA_FOUND)
        return()
    endif()
    set_property(DIRECTORY ${PROJECT_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${TLVFORGE_NATIVES_TABLE})
    file(READ ${TLVFORGE_NATIVES_TABLE} table)
    string(REGEX MATCHALL "\nNATIVE(_AS)?\\([A-Za-z0-9_]+|_dll_1[A-Za-z0-9]+\\(JNIEnv" found "${table}")
    list(TRANSFORM found REPLACE "\\(JNIEnv$" "")
    list(TRANSFORM found REPLACE "^.*(\\(|_dll_1)" "Java_kestrelon_x509_tlvforge_Tlvforge_dll_1")
    set(${symbols} ${found} PARENT_SCOPE)
endfunction()

# Adds the native methods to the library, and a jar with the class and the library in it.
function(tlvforge_java library)
    if(NOT TLVFORGE_JAVA_FOUND)
        return()
    endif()
    file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/java/*.cpp)
    target_sources(${library} PRIVATE ${sources})
    target_include_directories(${library} SYSTEM PRIVATE ${TLVFORGE_JNI_H} ${TLVFORGE_JNI_MD_H})

    set(directory ${PROJECT_BINARY_DIR}/java)
    set(package kestrelon/x509/tlvforge)
    set(generator ${PROJECT_SOURCE_DIR}/src/java/GenerateTlvforge.java)
    set(generated ${directory}/source/${package}/Tlvforge.java)
    set(loader ${PROJECT_SOURCE_DIR}/src/java/${package}/NativeLibrary.java)
    set(classes ${directory}/classes)
    file(GLOB headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/include/tlvforge/*.h)

    add_custom_command(OUTPUT ${generated} ${directory}/natives.tsv
        COMMAND ${Java_JAVA_EXECUTABLE} ${generator}
            ${generated} ${directory}/natives.tsv ${TLVFORGE_NATIVES_TABLE} ${headers}
        DEPENDS ${generator} ${TLVFORGE_NATIVES_TABLE} ${headers}
        COMMENT "Declaring the native methods in Tlvforge.java" VERBATIM)
    add_custom_command(OUTPUT ${directory}/tlvforge.jar
        COMMAND ${CMAKE_COMMAND} -E rm -rf ${classes}
        COMMAND ${Java_JAVAC_EXECUTABLE} --release 17 -encoding UTF-8 -Xlint:all -Werror -Xdoclint:all,-missing
            -d ${classes} ${generated} ${loader}
        COMMAND ${CMAKE_COMMAND} -E copy $<TARGET_FILE:${library}> ${classes}/${package}/lib${library}.so
        COMMAND ${Java_JAR_EXECUTABLE} --create --file ${directory}/tlvforge.jar -C ${classes} .
        DEPENDS ${generated} ${loader} ${library}
        COMMENT "Building tlvforge.jar" VERBATIM)
    add_custom_target(tlvforge_jar ALL DEPENDS ${directory}/tlvforge.jar ${directory}/natives.tsv)
    set_target_properties(tlvforge_jar PROPERTIES
        JAR ${directory}/tlvforge.jar NATIVES ${directory}/natives.tsv CLASSES ${classes})
endfunction()
