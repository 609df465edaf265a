target_link_libraries(test-simulator PRIVATE PkgConfig::HTTPLIB OpenSSL::SSL OpenSSL::Crypto)
