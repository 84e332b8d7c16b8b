console.log(1)
