-- expect exit: 255
os.exit(-1)
