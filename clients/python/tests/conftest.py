pytest_plugins = ["homeloom.pytest_plugin", "pytester"]
