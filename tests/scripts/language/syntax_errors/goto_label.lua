-- expect error 2:6: expected function call
goto done
